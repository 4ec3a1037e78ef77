#ifndef HOST_DIRECTIVE_H_
#define HOST_DIRECTIVE_H_

#include <string>

namespace host {

/// What the loader must know of a directive of ACE's service configurator; ACE itself takes the rest.
struct Directive {
  std::string verb;        ///< its first word: dynamic, remove, ...
  std::string name;        ///< the service that it is about
  std::string behindName;  ///< all that stands behind the name

  // Of `dynamic NAME Service_Object * LIBRARY:FACTORY() [active|inactive] ["ARGUMENTS"]`, and empty unless
  // the whole directive has this form: behind a mistake ACE loads what stands before it.
  std::string library;
  std::string factory;
};

/// Takes a directive apart, as far as it goes; whether others than dynamic ones are right is left to ACE.
Directive ParseDirective(const std::string& text);

}  // namespace host

#endif  // HOST_DIRECTIVE_H_
