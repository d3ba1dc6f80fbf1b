#include "nyr/frame/notifications.h"

#include <mutex>
#include <new>
#include <unordered_map>

#include "nyr/platform/ascii_p.h"

namespace {

struct Registry
{
    std::mutex mutex;  // hosts may register from any thread; registration is rare
    std::unordered_map<std::string, unsigned int> byName;  // key: name in upper case
    std::vector<std::string> names;                         // index: number - 0xC000
};

Registry& TheRegistry()
{
    static Registry registry;
    return registry;
}

// Names compare without regard to ASCII case, whatever the host's locale.
std::string Key(const char* name)
{
    return nyr::ascii::ToUpper(name);
}

constexpr unsigned int kLastRegisteredMessage = 0xFFFF;

}  // namespace

unsigned int NyrRegisterWindowMessage(const char* name)
{
    if (!name || !*name)
        return 0;
    Registry& registry = TheRegistry();
    std::lock_guard lock(registry.mutex);
    try {
        std::string key = Key(name);
        if (const auto it = registry.byName.find(key); it != registry.byName.end())
            return it->second;
        const auto number = kNyrFirstRegisteredMessage + static_cast<unsigned int>(registry.names.size());
        if (number > kLastRegisteredMessage)
            return 0;
        registry.names.emplace_back(name);
        try {
            registry.byName.emplace(std::move(key), number);
        } catch (const std::bad_alloc&) {
            registry.names.pop_back();
            throw;
        }
        return number;
    } catch (const std::bad_alloc&) {
        return 0;  // as the platform answers when it cannot register
    }
}

std::string NyrRegisteredMessageName(unsigned int message)
{
    Registry& registry = TheRegistry();
    std::lock_guard lock(registry.mutex);
    if (message < kNyrFirstRegisteredMessage || message - kNyrFirstRegisteredMessage >= registry.names.size())
        return {};
    return registry.names[message - kNyrFirstRegisteredMessage];
}

// Registered during the library's static initialisation, in this order.
#define NYR_DEFINE_NOTIFICATION(name) const unsigned int name = NyrRegisterWindowMessage(#name);
NYR_NOTIFICATIONS(NYR_DEFINE_NOTIFICATION)
#undef NYR_DEFINE_NOTIFICATION

std::vector<std::pair<std::string, unsigned int>> NyrLibraryNotifications()
{
#define NYR_LIST_NOTIFICATION(name) {#name, name},
    return {NYR_NOTIFICATIONS(NYR_LIST_NOTIFICATION)};
#undef NYR_LIST_NOTIFICATION
}
