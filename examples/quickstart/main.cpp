// SPDX-License-Identifier: MIT

#include <cstdio>
#include <string>

#include <KXFoundation/Core/KXList.h>
#include <KXFoundation/Localization/KXLocalizationUtils.h>

using kx::KXLocalizationUtils;

// An object of one's own: its id is the key of its name in the string tables of Resources/.
class Harbour : public kx::Subclass<Harbour, kx::KXObject> {
  public:
    bool init(const std::string& id) {
        if (!Super::init(id)) return false;
        setName(KXLocalizationUtils::localizedStringForKey(id, std::nullopt));
        return true;
    }
};

int main(int argc, char** argv) {
    KXLocalizationUtils::setSelectLanguage(argc > 1 ? argv[1] : "auto");
    const auto harbours = kx::KXList::safeList();
    for (const char* id : {"harbour.nice", "harbour.genoa"}) harbours->addObject(kx::make<Harbour>(id));

    std::puts(KXLocalizationUtils::localizedStringForKey("greeting", std::nullopt).value_or("").c_str());
    harbours->enumerateObjectsUsingBlock([](const auto& harbour, std::uint64_t, bool&) {
        std::printf("  %s\n", harbour->name().value_or("?").c_str());
    });
}
