// SPDX-License-Identifier: MIT

#include "pages/LinksPage.h"

#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Core/KXAppInfo.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Foundation/NSDate.h>
#include <KXFoundation/Platform/Foundation/NSURL.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

constexpr std::string_view kStoreIdentifier = "100200300";  // the gallery's own, were it in a store

std::string orNone(const std::optional<std::string>& value) {
    return value.value_or(text("general.none"));
}

std::string yesOrNo(bool answer) {
    return text(answer ? "general.yes" : "general.no");
}

std::string now() {
    const auto seconds = static_cast<std::int64_t>(NSDate::date().timeIntervalSince1970());
    return KXAppUtils::getTime(seconds, "EEEE, d MMMM yyyy, HH:mm");
}

void openFeedbackPage() {
    KXAppUtils::openURLString(KXAppUtils::getFeedbackUrl());
}

void openResources() {
    KXAppUtils::openURL(NSURL::fileURLWithPath(NSBundle::mainBundle()->bundlePath()));
}

}  // namespace

struct LinksPage::Lookup {
    std::string state = text("links.lookup.idle");

    void end(const std::shared_ptr<KXAppInfo>& info) {
        state = info ? orNone(info->releaseVersion()) : text("links.lookup.nothing");
    }
};

LinksPage::LinksPage() : lookup_(std::make_shared<Lookup>()) {}
LinksPage::~LinksPage() = default;

/// The answer comes on a thread of the session; the page belongs to the main one.
void LinksPage::lookUp(Gallery& gallery) {
    const auto answered = [page = std::weak_ptr(lookup_), &gallery](const std::shared_ptr<KXAppInfo>& info) {
        DispatchQueue::main().async([page, &gallery, info] {
            const auto lookup = page.lock();
            if (!lookup) return;
            lookup->end(info);
            gallery.rebuild();
        });
    };
    if (KXAppUtils::checkAppInfoFromAppStore(kStoreIdentifier, answered))
        lookup_->state = text("links.lookup.running");
    gallery.rebuild();
}

void LinksPage::build(Column& column, Gallery& gallery) {
    column.title(text("links.title"));
    column.paragraph(text("links.explanation"));
    column.space(12);
    column.pair(text("links.feedback"), KXAppUtils::getFeedbackUrl());
    column.pair(text("links.feedback_code"), KXAppUtils::getFeedbackLanguageCode());
    column.pair(text("links.tool_code"), KXAppUtils::getORLOToolLanguageCode());
    column.row({pushButton("links.open_feedback", openFeedbackPage),
                pushButton("links.open_folder", openResources)});
    column.space(12);
    column.pair(text("application.version"), orNone(KXAppUtils::currentAppVersion()));
    column.pair(text("links.build"), orNone(KXAppUtils::currentAppVersionCode()));
    column.pair(text("links.older") + " 1.9 < 1.10",
                yesOrNo(KXAppUtils::isAppVersionOlderThan("1.9", "1.10")));
    column.pair(text("links.lookup"), lookup_->state);
    column.row({pushButton("links.look_up", [this, &gallery] { lookUp(gallery); }),
                pushButton("button.cancel", KXAppUtils::cancelCheckAppInfo)});
    column.space(12);
    column.pair(text("links.now"), now());
    column.pair(text("links.size"), KXAppUtils::getSpaceStringFromByteValue(123'456'789));
}

}  // namespace gallery
