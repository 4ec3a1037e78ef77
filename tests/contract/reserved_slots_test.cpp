// The operations that reserve the slots between those of the contract: each has the slot of its name and does
// nothing.

#include <vector>

#include "framework/bundle_mgr.h"
#include "framework/log_service.h"
#include "tests/contract/raw_slots.h"
#include "tests/recording_fixture.h"

namespace {

using Slots = std::vector<std::size_t>;

void CallReserved(NS_BUNDLEMGR1::Bundle& bundle) {
  bundle.Reserved3();
  bundle.Reserved4();
  bundle.Reserved5();
  bundle.Reserved6();
  bundle.Reserved7();
  bundle.Reserved8();
  bundle.Reserved9();
  bundle.Reserved10();
  bundle.Reserved11();
  bundle.Reserved12();
}

void CallReserved(NS_BUNDLEMGR1::BundleMgr& manager) {
  manager.Reserved3();
  manager.Reserved4();
  manager.Reserved5();
  manager.Reserved6();
  manager.Reserved8();
  manager.Reserved9();
}

void CallReserved(NS_LOG_SERVICE1::Logger& logger) {
  logger.Reserved3();
  logger.Reserved4();
  logger.Reserved5();
  logger.Reserved6();
}

void CallReserved(NS_LOG_SERVICE1::LogSvcInterface& service) {
  service.Reserved5();
  service.Reserved6();
}

class ReservedSlots : public recording::FrameworkTest {
 protected:
  /// The slots that the calls use, after calls that must do nothing.
  template <class Object>
  Slots Of(Object& object) {
    // Hides the object's type: a compiler that knows it calls directly instead of through the table.
    Object* volatile unknown = &object;
    CallReserved(*unknown);
    EXPECT_THAT(framework.Calls(), testing::IsEmpty());
    using Table = raw::ReplacedTable<13>;
    const Table table(&object);
    CallReserved(*unknown);
    return Table::called;
  }
};

TEST_F(ReservedSlots, OfABundleAre3To12) {
  recording::Bundle bundle("bundle");
  EXPECT_EQ(Of<NS_BUNDLEMGR1::Bundle>(bundle), (Slots{3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST_F(ReservedSlots, OfTheBundleManagerAre3To6And8And9) {
  EXPECT_EQ(Of(*NS_BUNDLEMGR1::BundleMgr::Instance()), (Slots{3, 4, 5, 6, 8, 9}));
}

TEST_F(ReservedSlots, OfALoggerAre3To6) {
  static recording::Logger logger;  // Static, because its destruction would be recorded.
  EXPECT_EQ(Of<NS_LOG_SERVICE1::Logger>(logger), (Slots{3, 4, 5, 6}));
}

TEST_F(ReservedSlots, OfTheLogServiceAre5And6) {
  recording::LogService service;
  EXPECT_EQ(Of<NS_LOG_SERVICE1::LogSvcInterface>(service), (Slots{5, 6}));
}

}  // namespace
