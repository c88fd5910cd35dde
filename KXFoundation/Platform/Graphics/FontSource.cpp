// SPDX-License-Identifier: MIT

#include <mutex>

#include <fontconfig/fontconfig.h>

#include <KXFoundation/Platform/Graphics/FontFace.h>
#include <KXFoundation/Platform/Graphics/FontSource.h>
#include <KXFoundation/Platform/Graphics/LoadedFonts.h>
#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx {

namespace {

// Names that every configuration maps to a font of its own.
constexpr const char* kGenericFamilies[] = {"sans-serif", "serif", "monospace"};

void addFamilies(FcPattern* font, std::map<std::string, std::string>& families) {
    FcChar8* name = nullptr;
    for (int i = 0; FcPatternGetString(font, FC_FAMILY, i, &name) == FcResultMatch; ++i) {
        const std::string family = reinterpret_cast<const char*>(name);
        families.try_emplace(squashedFamily(family), family);
    }
}

std::map<std::string, std::string> familiesOf(FcConfig* configuration) {
    std::map<std::string, std::string> families;
    for (const char* generic : kGenericFamilies) families.emplace(squashedFamily(generic), generic);
    const FcFontSet* fonts = FcConfigGetFonts(configuration, FcSetSystem);
    for (int i = 0; fonts && i < fonts->nfont; ++i) addFamilies(fonts->fonts[i], families);
    return families;
}

FcConfig* readConfiguration(const std::string& path) {
    FcConfig* configuration = FcConfigCreate();
    const auto* file = reinterpret_cast<const FcChar8*>(path.c_str());
    if (FcConfigParseAndLoad(configuration, file, FcTrue) && FcConfigBuildFonts(configuration))
        return configuration;
    FcConfigDestroy(configuration);
    return nullptr;
}

}  // namespace

struct FontSource::State {
    std::optional<std::string> file;
    std::once_flag once;
    LoadedFonts fonts;
    Result<void> outcome;

    void load() {
        if (file) fonts.configuration = readConfiguration(*file);
        if (file && !fonts.configuration)
            outcome = Error{ErrorKind::Corrupt, 0, "font configuration " + *file};
        if (!fonts.configuration) fonts.configuration = FcConfigReference(nullptr);  // the desktop's
        if (fonts.configuration) fonts.families = familiesOf(fonts.configuration);
    }
    ~State() {
        if (fonts.configuration) FcConfigDestroy(fonts.configuration);
    }
};

FontSource::FontSource(std::optional<std::string> configurationFile) : state_(std::make_unique<State>()) {
    state_->file = std::move(configurationFile);
}

FontSource::~FontSource() = default;

Result<void> FontSource::load() const {
    std::call_once(state_->once, [&] { state_->load(); });
    return state_->outcome;
}

const LoadedFonts& FontSource::loaded() const {
    if (const auto outcome = load(); !outcome) logError("fonts", outcome.error());
    return state_->fonts;
}

PortSlot<FontSource>& FontSource::slot() {
    static constinit PortSlot<FontSource> slot;
    return slot;
}

std::shared_ptr<FontSource> FontSource::makeDefault() {
    return std::make_shared<FontSource>();
}

Result<void> Fonts::useConfiguration(const std::string& path) {
    auto source = std::make_shared<FontSource>(path);
    if (auto outcome = source->load(); !outcome) return outcome;
    FontSource::slot().replace(std::move(source));
    return {};
}

}  // namespace kx
