#ifndef HOST_COMMANDS_COMMAND_H_
#define HOST_COMMANDS_COMMAND_H_

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "host/base/table.h"
#include "host/base/words.h"
#include "host/commands/session.h"

/// The table of commands, used by the program's command line, command files and the console. Help, completion
/// and the test of the manual page read it. To add a command, add a row to the function of its group; add the
/// function of a new group to the list in `Commands` (command.cpp).
///
/// Threads: the program's main thread only, for everything in host/commands except value.h.
namespace host {

/// The kind of names that completion offers for a command's arguments.
enum class Completes { kNothing, kCommands, kOperations, kBundles, kItems, kFiles };

/// A parsed command line. Calling it runs the command; it may run more than once.
/// Throws `UsageError` or `Failure` with a one-line message.
using Action = std::function<void(Session&)>;

struct Command {
  std::string name;
  std::string arguments;     ///< shown after the name in its usage
  std::string summary;       ///< one line
  std::string details;       ///< more lines for `help COMMAND`, each with its line feed; may be empty
  std::size_t minArguments;  ///< the fewest arguments
  std::size_t maxArguments;  ///< the most arguments
  Completes completes;

  /// Parses a line's words, the name first, without running anything. Throws `UsageError` with the index of
  /// the wrong word.
  Action (*parse)(const Words& words);
};

inline constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);

/// The rows of each group; each group has its own source file.
std::vector<Command> ListCommands();     // bundles, services, interfaces
std::vector<Command> LoadCommands();     // load, init, reload, unload
std::vector<Command> CallCommands();     // call, time
std::vector<Command> ReplayCommands();   // replay
std::vector<Command> ItemCommands();     // items, set, unset
std::vector<Command> LogCommands();      // log
std::vector<Command> RunCommands();      // run, expect, expect-error
std::vector<Command> ConsoleCommands();  // console, in host/console
std::vector<Command> HelpCommands();     // help, quit

/// All rows, in the order that help prints.
const std::vector<Command>& Commands();

/// "NAME ARGUMENTS".
std::string Usage(const Command& command);

/// The row of that name; throws `UsageError` with a suggestion when there is none.
const Command& FindCommand(const std::string& name);

/// The loaded bundle of that name, which is the word of that index; throws `Failure` with a suggestion when
/// there is none.
const LoadedBundle& FindBundle(const Session& session, const std::string& name, std::size_t word);

/// Parses a command line, the name first. Every command accepts `NAME --help`. Throws as `Command::parse`
/// does. The action reports an exception from a bundle as `Failure`.
Action ParseCommand(const Words& words);

/// Parses the optional argument --json of a listing. Returns an action that prints the table of `list`, as JSON
/// with "--json". Throws `UsageError` for any other argument.
Action ParseListing(const Words& words, Table (*list)(const Session&));

/// Prints the usage and summary of each command.
void PrintCommands(std::ostream& out);

}  // namespace host

#endif  // HOST_COMMANDS_COMMAND_H_
