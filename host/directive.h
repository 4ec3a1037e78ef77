#ifndef HOST_DIRECTIVE_H_
#define HOST_DIRECTIVE_H_

#include <string>

namespace host {

/// What the loader must know of a directive of ACE's service configurator; ACE itself takes the rest.
struct Directive {
  std::string verb;     ///< its first word: dynamic, remove, ...
  std::string name;     ///< the service that it is about
  std::string library;  ///< as in `dynamic NAME Service_Object * LIBRARY:FACTORY()`; empty for any other form
  std::string factory;  ///< the same
};

/// Takes a directive apart, as far as it goes; whether it is right is left to ACE.
Directive ParseDirective(const std::string& text);

}  // namespace host

#endif  // HOST_DIRECTIVE_H_
