#include "device/judge/AddressQueue.h"
#include "device/judge/Addresses.h"
#include "device/judge/Pictures.h"

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
https:///etc/passwd
https:example.org
file:///etc/passwd
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
    const auto opened = [&](int number, std::chrono::nanoseconds after) {
        const auto next = queue.next(now += after);
        queue.started(number, now);
        return next == std::to_string(number);
    };
    EXPECT_TRUE(opened(0, seconds(0))) << "the first at once";
    queue.ended(0);
    EXPECT_EQ(queue.pause(now), seconds(1));
    EXPECT_FALSE(queue.next(now + milliseconds(999)));
    EXPECT_TRUE(opened(1, seconds(1)));
    EXPECT_EQ(queue.pause(now), AddressQueue::patience) << "its opener is at work";
    EXPECT_FALSE(queue.next(now + seconds(9)));
    for (int number = 2; number <= 4; ++number)
        EXPECT_TRUE(opened(number, seconds(10))) << "it has become a browser";
    EXPECT_FALSE(queue.next(now += seconds(1000))) << "four of them stay";
    EXPECT_FALSE(queue.pause(now));
    queue.ended(3);
    for (int number = 5; number <= 9; ++number, queue.ended(number - 1))
        EXPECT_TRUE(opened(number, seconds(1)));
    EXPECT_FALSE(queue.next(now + seconds(1000))) << "ten waited in all";
}

TEST(ShotNames, AreWhatTheDriverSendsAndFillNoMemory) {
    ShotNames names;
    names.read("tap x\n  shot  a b.png \r\n# shot no.png\nshotgun x\nshot \"open.png\nshot late");
    EXPECT_FALSE(names.contains("late")) << "the line has not ended";
    names.read(".png");
    names.finish();
    names.read("shot " + std::string(ShotNames::longestLine, 'x') + "\nshot after.png\n");
    names.read(std::string("shot zero\0.png\n", 15));
    for (const char* name : {"a b.png", "late.png", "after.png"})
        EXPECT_TRUE(names.contains(name)) << name;
    for (const char* name : {"", "no.png", "open.png", "\"open.png", "late", "zero", "x"})
        EXPECT_FALSE(names.contains(name)) << name;
    for (int number = 0; number < 200'000; ++number)
        names.read("shot " + std::to_string(number) + "\n");
    EXPECT_TRUE(names.contains("0"));
    EXPECT_FALSE(names.contains("199999"));
    EXPECT_LE(names.held(), std::size_t{4} << 20);
}

} // namespace dubrix
