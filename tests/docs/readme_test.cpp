// Runs the caller that the README shows.

#include <ace/Service_Object.h>

#include <cstdio>
#include <optional>
#include <string>

#include "unit1.cpp"

extern "C" ACE_Service_Object* _make_ii_ascii_util(ACE_Service_Object_Exterminator* exterminator);

int main() {
  const std::optional<std::string> before = SeverityOf("SEVERITY=3");
  ACE_Service_Object_Exterminator destroy = nullptr;
  ACE_Service_Object* const service = _make_ii_ascii_util(&destroy);
  const std::optional<std::string> with = SeverityOf("ID=1, SEVERITY=3");
  destroy(service);
  std::printf("without the bundle: %s\nwith the bundle: %s\n", before.value_or("none").c_str(),
              with.value_or("none").c_str());
  return !before && with == "3" ? 0 : 1;
}
