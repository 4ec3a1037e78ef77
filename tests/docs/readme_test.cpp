// Runs the caller that the README shows.

#include <ace/Service_Object.h>

#include <cstdio>

#include "unit1.cpp"

extern "C" ACE_Service_Object* _make_ii_ascii_util(ACE_Service_Object_Exterminator* exterminator);

int main() {
  const std::string before = SeverityOf("SEVERITY=3");
  ACE_Service_Object_Exterminator destroy = nullptr;
  ACE_Service_Object* const service = _make_ii_ascii_util(&destroy);
  const std::string with = SeverityOf("ID=1, SEVERITY=3");
  destroy(service);
  std::printf("without the bundle: %s\nwith the bundle: %s\n", before.c_str(), with.c_str());
  return before == "no such interface" && with == "3" ? 0 : 1;
}
