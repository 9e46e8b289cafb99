// A shared library of the system's, loaded while the program runs.
#pragma once

#include <memory>
#include <string>

namespace corvantis::rig {

class SharedLibrary {
  public:
    // Loads the library of a path, or of a file name that the system's loader looks for in its own
    // places. Where it cannot, the object is empty and Problem() says why.
    explicit SharedLibrary(const std::string& path);

    bool IsLoaded() const { return library != nullptr; }
    const std::string& Problem() const { return problem; }
    // The address of an exported function, or null.
    void* Function(const char* name) const;

  private:
    struct Unload {
        void operator()(void* loaded) const;
    };

    std::unique_ptr<void, Unload> library;
    std::string problem;
};

// The name of the file that a library is in: libNAME.so, libNAME.dylib or NAME.dll.
std::string LibraryFileName(const std::string& name);
// Whether a text says where a file is, and not only its name.
bool IsPath(const std::string& text);
// The folder that the running program lies in, with a separator at its end; "" if unknown.
std::string ProgramFolder();
bool FileExists(const std::string& path);

}  // namespace corvantis::rig
