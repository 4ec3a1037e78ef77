// Runs the C++ blocks of a page: run_snippets COUNT. The bundle is linked, so its factory is called directly;
// the configuration directory comes from the environment. COUNT is the smallest number of blocks that the
// page must have, so that a page whose blocks are no longer found fails.

#include <cstdio>
#include <cstdlib>

#include <ace/Service_Object.h>

#include "ascii_util/ascii_util_interface.h"
#include "framework/interface_registry.h"

extern "C" ACE_Service_Object* _make_ii_ascii_util(ACE_Service_Object_Exterminator* exterminator);

int RunSnippets(NS_ASCII::AsciiUtilInterface& util);

int main(int argc, char* argv[]) {
  const int expected = argc == 2 ? std::atoi(argv[1]) : 0;
  if (expected < 1) {
    std::fprintf(stderr, "usage: run_snippets COUNT\n");
    return 2;
  }
  ACE_Service_Object_Exterminator destroy = nullptr;
  ACE_Service_Object* const service = _make_ii_ascii_util(&destroy);
  if (service->init(0, nullptr) != 0) {
    std::fprintf(stderr, "run_snippets: the configuration directory is not known\n");
    return 1;
  }
  auto* const interface = NS_BUNDLEMGR1::CheckIFBuf("AsciiUtilInterface")->front();
  const int ran = RunSnippets(dynamic_cast<NS_ASCII::AsciiUtilInterface&>(*interface));
  destroy(service);
  std::printf("%d blocks ran\n", ran);
  return ran >= expected ? 0 : 1;
}
