// A module that is there for its type library.
extern "C" int Answer() { return 42; }
