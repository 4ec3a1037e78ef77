#ifndef TOOLS_ALMCFG_WRITE_PLACE_JSON_H_
#define TOOLS_ALMCFG_WRITE_PLACE_JSON_H_

#include "tools/almcfg/read/loaded_table.h"
#include "tools/almcfg/write/json_text.h"

/// JSON for the place of a record, as a copy. Any thread may call.
namespace almcfg {

/// {"file": NAME, "line": NUMBER}, or null for no place.
inline Json ToJson(Place place) {
  Json json = nullptr;
  if (place) {
    SetText(json, "file", place.text->Name());
    json["line"] = place.line;
  }
  return json;
}

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_WRITE_PLACE_JSON_H_
