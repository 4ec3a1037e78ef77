#ifndef HOST_COMMAND_H_
#define HOST_COMMAND_H_

#include <string>
#include <vector>

#include "host/session.h"
#include "host/words.h"

/// The commands, as a table: the same ones on the program's command line, in a command file and in the
/// console.
///
/// Threads: one, the program's own. The same holds for everything that commands are made of.
namespace host {

/// What the arguments of a command are names of, for completion.
enum class Completes { kNothing, kCommands, kOperations, kBundles, kItems, kFiles };

struct Command {
  std::string name;
  std::string arguments;  ///< as shown behind the name in its usage
  std::string summary;    ///< one line
  std::string details;    ///< more lines for `help COMMAND`, each ended; may be empty
  std::size_t least;      ///< the fewest arguments
  std::size_t most;       ///< the most arguments
  Completes completes;
  void (*check)(const Words& arguments);  ///< throws `UsageError` before anything is done; may be null
  void (*run)(Session& session, const Words& arguments);
};

inline constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);

/// Each group's rows; one source file each.
std::vector<Command> LookCommands();  // bundles, services, interfaces
std::vector<Command> LoadCommands();  // load, init, unload
std::vector<Command> CallCommands();  // call, time
std::vector<Command> ItemCommands();  // items, set, unset
std::vector<Command> LogCommands();   // log
std::vector<Command> HelpCommands();  // help, quit

/// All rows.
const std::vector<Command>& Commands();
std::vector<std::string> CommandNames();

/// "NAME ARGUMENTS".
std::string Usage(const Command& command);

/// The row of that name; throws `UsageError` with a suggestion when there is none.
const Command& FindCommand(const std::string& name);

/// Checks a command line, name first, without doing anything; throws `UsageError` when it is wrong. `NAME
/// --help` is always right.
void CheckCommand(const Words& words);

/// Checks and runs a command line. Throws `UsageError` or `Failure` with one line; anything that a bundle
/// throws counts as a failure of the command.
void RunCommand(Session& session, const Words& words);

}  // namespace host

#endif  // HOST_COMMAND_H_
