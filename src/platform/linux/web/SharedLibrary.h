#pragma once

namespace korvalin {

/// A library of the system that is loaded only when it is needed, and stays until the process ends.
class SharedLibrary {
  public:
    /// `name` with the version of its interface, "libz.so.1".
    explicit SharedLibrary(const char* name);

    /// Sets `function` to the library's function of that name; false when there is no such library or
    /// function.
    template <typename Function>
    bool Find(const char* name, Function*& function) const {
        function = reinterpret_cast<Function*>(Symbol(name));
        return function != nullptr;
    }

  private:
    void* Symbol(const char* name) const;

    void* library_;
};

} // namespace korvalin
