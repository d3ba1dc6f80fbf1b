// What the platform's process attach does for the library, run while the
// shared library is loaded: the library's module becomes the source of its
// texts, and the C library reads the time zone from TZ so that local-time
// conversions see the process's zone.
#include <ctime>

#include "nyr/frame/resource_module.h"

namespace {

struct LibraryAttach
{
    LibraryAttach()
    {
        NyrSetNyrResourceHandle(CNyrResourceModule::Library());
        tzset();
    }
};

const LibraryAttach attach;

}  // namespace
