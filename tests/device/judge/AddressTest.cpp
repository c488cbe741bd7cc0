#include "device/judge/AddressQueue.h"
#include "device/judge/Addresses.h"

#include <gtest/gtest.h>
#include <sstream>

namespace dubrix {

TEST(Addresses, PagesAndPlainMailAreOpenedAndNothingElse) {
    std::istringstream opened(R"(https://example.org
HTTP://example.org:8080/a?b=c&d=%0A#e
https://[::1]/
https://user@example.org/~(x)*;,!$+
mailto:a@example.org
MAILTO:a%40example.org
mailto:a@b,c@d?subject=Hello%20(1.2)%20there&body=one%0D%0Atwo%09three&to=e@f
mailto:?To=a@b&SUBJECT=x
mailto:a@b?subject=%C3%A9&body=)");
    for (std::string address; std::getline(opened, address);)
        EXPECT_TRUE(mayBeOpened(address)) << address;
    std::istringstream refused(R"(
:
https:
https:///etc/passwd
https:example.org
https://?x
file:///etc/passwd
javascript:alert(1)
ssh://-oProxyCommand=x/
httpsx://a/
 https://a/
https://a/ b
https://a/'
https://a/"
https://a/`id`
https://a\b/
https://a/{b}|<c>
https://a/%4
https://a/%zz
https://a/%+1
https://-x/
mailto:
mailto:a@b?
mailto:a@b?attach=/etc/passwd
mailto:a@b?BCC=c@d
mailto:a@b?subject=x&attach=y
mailto:a@b?%61ttach=/etc/passwd
mailto:a@b?subject
mailto:a@b&attach=/etc/passwd?subject=x
mailto:a@b?subject=x?attach=y
mailto:a@b?subject=x#&attach=y
mailto:a@b?subject=x&
mailto:a@b?=x
mailto:a%0Abcc:c@d
mailto:a@b?to=c%0A
mailto:a@b?subject=x%0dy
mailto:a@b?subject=x%00
mailto:a@b?body=%1b[2J
mailto:a@b?body=%7f
mailto:a@b?subject=x%27,attachment=%27/etc/passwd
mailto:a@b?body=%22
mailto:a%5Cb
mailto:a@b?body=%)");
    for (std::string address; std::getline(refused, address);)
        EXPECT_FALSE(mayBeOpened(address)) << address;
    for (const char byte : {'\0', '\n', '\x7f', '\xe9'})
        EXPECT_FALSE(mayBeOpened(std::string("https://a/") + byte)) << int{byte};
    EXPECT_TRUE(mayBeOpened("https://" + std::string(2040, 'a')));
    EXPECT_FALSE(mayBeOpened("https://" + std::string(2041, 'a')));
}

TEST(AddressQueue, OpensOneAtATimeOneASecondAndTenAtMost) {
    using std::chrono::milliseconds;
    using std::chrono::seconds;
    AddressQueue queue;
    AddressQueue::Clock::time_point now{};
    EXPECT_FALSE(queue.pause(now)) << "nothing to wait for";
    for (int number = 0; number < 20; ++number)
        queue.add(std::to_string(number));
    EXPECT_EQ(queue.next(now), "0") << "the first at once";
    queue.started(1, now);
    queue.ended(1);
    EXPECT_FALSE(queue.next(now + milliseconds(999)));
    EXPECT_EQ(queue.pause(now), seconds(1));
    EXPECT_EQ(queue.next(now += seconds(1)), "1");
    queue.started(2, now);
    EXPECT_FALSE(queue.next(now + seconds(9))) << "its opener is at work";
    EXPECT_EQ(queue.pause(now), AddressQueue::patience);
    for (pid_t opener = 3; opener <= 5; ++opener) {
        EXPECT_EQ(queue.next(now += seconds(10)), std::to_string(opener - 1))
            << "it has become a browser";
        queue.started(opener, now);
    }
    EXPECT_FALSE(queue.next(now += seconds(1000))) << "four of them stay";
    EXPECT_FALSE(queue.pause(now));
    queue.ended(3);
    int rest = 0;
    for (pid_t opener = 6; queue.next(now); now += seconds(1), ++rest) {
        queue.started(opener, now);
        queue.ended(opener++);
    }
    EXPECT_EQ(rest, 5) << "ten waited in all";
}

} // namespace dubrix
