#include "host/console.h"

#include "host/script.h"

namespace host {

void RunConsole(Session& session) {
  session.headings = true;
  RunScriptFile(session, "-");
}

}  // namespace host
