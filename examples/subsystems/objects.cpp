// SPDX-License-Identifier: MIT

#include <cstdio>
#include <thread>

#include <KXFoundation/Core/KXError.h>
#include <KXFoundation/Core/KXList.h>

using namespace kx;

class Harbour : public Subclass<Harbour, KXObject> {
  public:
    bool init(const char* id, int berths) {
        if (berths < 0 || !Super::init(id)) return false;  // make() answers none then
        berths_ = berths;
        return true;
    }
    int berths() const { return berths_; }

  private:
    int berths_ = 0;
};

int main() {
    const auto harbours = KXList::safeList();
    std::thread west([&] { harbours->addObject(make<Harbour>("nice", 12)); });
    std::thread east([&] { harbours->addObject(make<Harbour>("genoa", 40)); });
    west.join();
    east.join();

    int berths = 0;
    harbours->enumerateObjectsUsingBlock(
        [&](const auto& object, KXList::Index, bool&) { berths += objectCast<Harbour>(object)->berths(); });
    std::printf("%d berths in %d harbours\n", berths, static_cast<int>(harbours->count()));
    std::printf("nice is a %s\n", harbours->objectWithID("nice")->className().c_str());
    std::printf("kiel is %s\n", harbours->objectWithID("kiel") ? "there" : "absent");
    std::printf("a negative number of berths makes %s\n", make<Harbour>("x", -1) ? "a harbour" : "none");

    const auto element = harbours->objectAtIndex(7);  // a caller error: one line in the log, and none
    std::printf("number 7 is %s\n", element ? "there" : "absent");
    std::printf("an error with code -3 is %s\n",
                isSuccess(KXError::errorWithCode(-3).get()) ? "success" : "failure");
}
