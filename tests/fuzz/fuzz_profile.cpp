// The profile loader: whatever stands in the file, it is loaded as a whole or refused with a reason, and the
// elements that were there before stay in the latter case. What it takes of memory hangs on the file's size
// alone, and is gone with the overlay.

#include "Demand.h"
#include "FuzzInput.h"
#include "HeapInUse.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::CVideoOverlayManager;

namespace {

constexpr qint64 allowance = 256 * 1024; // with what is made at the first use
constexpr qint64 allowancePerByte = 256; // the smallest element takes 28 bytes of text, and is an object
constexpr qint64 keptByAll = 1024 * 1024;

void load(const QByteArray& json)
{
    const qint64 heapBefore = heapInUse();
    Tolvar::Varundo::ZelVideoOverlayElementAccessor accessor;
    CVideoOverlayManager manager;
    manager.setElementAccessor(&accessor);
    QString error;
    demand(manager.loadProfileData(R"({"elements": [{"kind": "static", "id": 3, "text": "before"}]})",
                                   QStringLiteral("before"), &error),
           "a good profile is loaded");
    const auto before = manager.getElementList();
    const bool loaded = manager.loadProfileData(json, QStringLiteral("input"), &error);
    demand(loaded == error.isEmpty(), "a profile is loaded, or it is said why not");
    if (!loaded) {
        demand(manager.getElementList() == before, "a bad profile changes nothing");
        demand(error.startsWith(QStringLiteral("input")), "the reason begins with the file's name");
        demand(!error.contains(QLatin1Char('\n')), "the reason is one line");
        return;
    }
    demand(heapInUse() - heapBefore < allowance + allowancePerByte * json.size(),
           "a profile takes no more memory than its size accounts for");
    for (auto* const element : manager.getElementList()) {
        demand(element && element->width() >= 0 && element->height() >= 0,
               "elements have a size that can be drawn");
        accessor.generateElementKey(element->getParamObject());
    }
    demand(manager.loadProfileData(json, QStringLiteral("input"), &error),
           "what was loaded once loads again");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static qint64 kept = 0;
    FuzzInput input(data, size);
    const QByteArray json = input.rest();
    const qint64 heapBefore = heapInUse();
    load(json);
    kept += heapInUse() - heapBefore;
    demand(kept < keptByAll, "profiles leave nothing behind that adds up");
    return 0;
}
