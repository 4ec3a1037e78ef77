#ifndef HOST_LOADER_LIBRARY_TRIAL_H_
#define HOST_LOADER_LIBRARY_TRIAL_H_

#include <chrono>
#include <string>

/// Loads a library in a child process before this process loads it. A truncated file and a constructor that
/// crashes, hangs or exits then end the child only. Constructors therefore run in two processes.
/// Threads: one at a time.
namespace host {

/// When the program was started as the child, runs the trial and ends the process. Otherwise makes this program
/// the one that `TryLibrary` starts. To be called first in `main`.
void RunLibraryTrial(int argc, const char* const* argv);

/// Sets the program that is started for trials; its `main` must call `RunLibraryTrial`. While it is empty, as
/// at first, libraries are tried in this process.
void SetTrialProgram(const std::string& program);

/// Loads `library`, a path or a name that the dynamic linker finds, in the child. Returns the path that it
/// was loaded from; empty when there is no such file. Throws `Failure` with a one-line message when loading
/// fails, ends the child, or takes longer than `limit`.
std::string TryLibrary(const std::string& library,
                       std::chrono::milliseconds limit = std::chrono::seconds(10));

}  // namespace host

#endif  // HOST_LOADER_LIBRARY_TRIAL_H_
