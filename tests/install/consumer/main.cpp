#include <cstdio>

#include "nyr/frame/notifications.h"
#include "nyr/frame/resource_module.h"

int main()
{
    std::printf("%s\n", NyrLoadString(26174).c_str());
    return WM_NYR_PROPERTIES >= kNyrFirstRegisteredMessage ? 0 : 1;
}
