// SPDX-License-Identifier: MIT

#include <vector>

#include <KXFoundation/Platform/Foundation/NSAttributedString.h>
#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/NSStringDrawing.h>
#include <KXFoundation/Platform/Graphics/TextLine.h>
#include <KXFoundation/UI/KXUIUtils.h>

namespace kx {

namespace {

/// The run's own font takes the present one's place if it is of the present one's class.
void takeFont(const NSAttributedString::Run& run, std::shared_ptr<NSFont>& present) {
    auto font = objectCast<NSFont>(run.attributes[NSFontAttributeName].asObject());
    if (font && (!present || font->isKindOfClass(present->isa()))) present = std::move(font);
}

/// The runs, each with the font that it is set and outlined in.
std::vector<StyledText> piecesOf(const NSAttributedString& text) {
    std::vector<StyledText> pieces;
    pieces.reserve(text.runs().size());
    std::shared_ptr<NSFont> font;
    for (const auto& run : text.runs()) {
        takeFont(run, font);
        pieces.push_back(
            {std::string_view(text.string()).substr(run.range.location, run.range.length), font});
    }
    return pieces;
}

}  // namespace

void KXUIUtils::renderNSAttributeString(const std::shared_ptr<NSAttributedString>& text,
                                        const std::shared_ptr<CGMutablePath>& path) {
    if (!text || !path) return;
    const auto line = TextLine::layOut(piecesOf(*text));
    for (const TextLine::Run& run : line->runs()) line->addOutlinesOf(run, *path);
}

}  // namespace kx
