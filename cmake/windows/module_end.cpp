// Linked into every module. The C++ runtime library, of which each module has its own, sets memory aside for
// exceptions that are thrown when there is none left, 18 KB or more, and never gives it back: the transport library
// is loaded and unloaded with every agent, and a process would grow by that much each time.

namespace __gnu_cxx {
void __freeres() noexcept;  // of the runtime library, declared in none of its headers
}

namespace {

struct ModuleEnd {
    ~ModuleEnd() { __gnu_cxx::__freeres(); }
};

// Made first and so destroyed last: until then somebody may throw.
[[gnu::init_priority(101)]] ModuleEnd moduleEnd;

}  // namespace
