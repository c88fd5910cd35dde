// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/AppEnvironment/AppLinks.h>
#include <KXFoundation/AppEnvironment/KXAppUtils.h>

using namespace kx;

int main() {
    AppLinks links = appLinks();
    links.feedbackAddress = "https://www.example.org/feedback";
    setAppLinks(links);

    const auto version = KXAppUtils::currentAppVersion();
    std::printf("%s (%s) %s\n", KXAppUtils::appName()->c_str(), KXAppUtils::appPackageName()->c_str(),
                version->c_str());
    std::printf("1.10.0 is %s\n",
                KXAppUtils::isAppVersionOlderThan(version, "1.10.0") ? "newer" : "not newer");
    std::printf("the user is in %s, served from %s\n", KXAppUtils::currentLocale().c_str(),
                KXAppUtils::currentCloudLocale().c_str());
    std::printf("%s free\n", KXAppUtils::getSpaceStringFromByteValue(1'500'000'000).c_str());
    std::printf("%s\n", KXAppUtils::getTime(0, "yyyy-MM-dd HH:mm").c_str());
    std::printf("%s\n", KXAppUtils::getFeedbackUrl().c_str());
}
