#ifndef HOST_LOADER_DIRECTIVE_H_
#define HOST_LOADER_DIRECTIVE_H_

#include <string>

namespace host {

/// The parts of an ACE service configurator directive that the loader uses. Plain value.
struct Directive {
  std::string verb;      ///< the first word: dynamic, remove, ...
  std::string name;      ///< the name of the service
  std::string trailing;  ///< the text after the name

  // The parts of `dynamic NAME Service_Object * LIBRARY:FACTORY() [active|inactive] ["ARGUMENTS"]`. Library
  // and factory are empty unless the whole directive has this form: ACE would process the part before a
  // syntax error.
  std::string library;
  std::string factory;
  std::string parameters;  // ARGUMENTS without the quotes
  bool active = true;
};

/// Parses a directive. Only `dynamic` is checked in full; ACE checks the others. Pure function; any thread may
/// call it.
Directive ParseDirective(const std::string& text);

/// Throws `UsageError` when ACE's scanner would reject `name`, the bundle's name in a `dynamic` directive, or
/// when the name or the string in the directive exceeds its buffer: the bundle would load here and fail in
/// production.
void RequireScannable(const std::string& name, const std::string& directive);

}  // namespace host

#endif  // HOST_LOADER_DIRECTIVE_H_
