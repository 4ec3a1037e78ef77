// Names every type that callers or the platform share with the bundle, so that the ABI baseline describes
// them.

#include "ascii_util/ascii_util_interface.h"
#include "framework/bundle_mgr.h"
#include "framework/log_service.h"
#include "framework/process_exception.h"
#include "framework/service_object_base.h"
#include "src/service/asciiutilsvc.h"

extern "C" PLATFORM_API void contract_types(
    const NS_ASCII::AsciiUtilInterface& /*unused*/, const NS_ASCII::ii_ascii_util& /*unused*/,
    const NS_BUNDLEMGR1::ServiceObjectBase& /*unused*/, const NS_BUNDLEMGR1::BundleMgr& /*unused*/,
    const NS_BUNDLEMGR1::Bundle& /*unused*/, const NS_BUNDLEMGR1::NULLServiceInterface& /*unused*/,
    const NS_BUNDLEMGR1::InterfaceNotExistException& /*unused*/, const NS_LOG_SERVICE1::Logger& /*unused*/,
    const NS_LOG_SERVICE1::LogSvcInterface& /*unused*/, const NS_LOG_SERVICE1::PosForDbg& /*unused*/) {}
