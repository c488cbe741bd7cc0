#pragma once

#include <QPointer>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

/// Hands notifications from whoever posts them to whoever observes their name, at once and on the
/// poster's thread. Main thread only.
class NotificationCenter {
public:
    using Method = std::function<void()>;

    /// Calls `method` for every notification of this name, in the order of registration, until
    /// `observer` is deleted.
    void addObserver(QObject& observer, std::string_view name, Method method);

    /// Returns when every observer has been called. Observers added meanwhile are not.
    void postNotificationName(std::string_view name);

private:
    struct Registration {
        QPointer<QObject> observer;
        std::string name;
        Method method;
    };

    std::vector<Registration> registrations_;
};

} // namespace dubrix
