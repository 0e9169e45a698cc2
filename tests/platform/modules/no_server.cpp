// A module without a start of its own and without class objects.
extern "C" int Answer() { return 42; }
