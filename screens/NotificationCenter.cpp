#include "screens/NotificationCenter.h"

#include <utility>

namespace dubrix {

void NotificationCenter::addObserver(QObject& observer, std::string_view name, Method method) {
    registrations_.push_back({&observer, std::string(name), std::move(method)});
}

void NotificationCenter::postNotificationName(std::string_view name) {
    std::erase_if(registrations_, [](const Registration& each) { return each.observer.isNull(); });
    // A copy: an observer may register or delete others.
    for (const Registration& each : std::vector(registrations_))
        if (each.observer && each.name == name)
            each.method();
}

} // namespace dubrix
