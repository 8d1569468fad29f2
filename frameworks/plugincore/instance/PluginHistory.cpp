// SPDX-License-Identifier: ISC
// The instance as its undo history sees it.
#include "frameworks/plugincore/instance/Plugin.h"

#include "frameworks/plugincore/ui/model/historyfile/HistoryFile.h"
#include "frameworks/qobase/util/DebugTrace.h"
#include "frameworks/qobase/util/Path.h"
#include "frameworks/qobase/util/Uuid.h"

namespace {

// Here the file belongs to one session; other products share it between sessions.
bool HasSessionFile(const PluginDefinition& definition)
{
    return definition.GetSessionMode() == 1 || definition.GetSessionMode() == 2;
}

} // namespace

bool Plugin::GetState(uint32_t size, void* buffer)
{
    return GetChunk({static_cast<uint8_t*>(buffer), size});
}

bool Plugin::GetStateForFile(uint32_t size, void* buffer)
{
    return GetCompareChunk({static_cast<uint8_t*>(buffer), size});
}

bool Plugin::SetState(uint32_t size, const void* buffer, uint32_t version)
{
    const UserAction action(*this); // one for all that comes back
    return SetChunk({static_cast<const uint8_t*>(buffer), size}, version, DSP::SourceController);
}

void Plugin::GetHistoryFilePath(String& path)
{
    path = {};
    if (IsOffline()) {
        return;
    }
    const PluginDefinition& product = GetDefinition();
    const String folder = Util::Path::Join(
        Util::Path::Join(Util::Path::GetApplicationDataFolder(), product.GetVendor()),
        product.GetShortName());
    const auto made = Util::Path::MakeDirectory(
        folder, Util::Path::Recursive::Yes, Util::Path::Visibility::OwnerOnly);
    if (!made) {
        Util::DebugTrace(made.GetDescription()); // what comes next tells the user
    }
    const String session =
        HasSessionFile(product) ? "_" + Util::FormatUuid(sessionUuid) : String("");
    path = Util::Path::Join(folder, String("Qo%1").arg(product.GetShortName()) + session + ".hst");
}

void Plugin::StateChanged()
{
    if (editor != nullptr && !stateChangePending) {
        stateChangePending = true;
        editor->StateChanged();
    }
}

Util::Expected<void> Plugin::SaveHistory(const HistoryModel& model)
{
    String path;
    GetHistoryFilePath(path);
    return path.IsEmpty() ? Util::Expected<void>()
                          : HistoryFile(FrameworkHistoryForm, *this).Save(path, model);
}

void Plugin::LoadHistory(HistoryModel& model)
{
    const HistoryFile file(FrameworkHistoryForm, *this);
    String path;
    GetHistoryFilePath(path);
    if (path.IsEmpty()) {
        model = {};
        file.MakeInitialState(model);
    } else {
        file.Load(path, model);
    }
}

void Plugin::FollowEditor()
{
    stateChangePending = false;
    if (editor == nullptr) {
        FlushHistory();
    } else if (history) {
        history->onEditorOpened();
    }
}

void Plugin::NotifyHistory()
{
    if (history) {
        history->onStateChanged();
    }
}

void Plugin::FlushHistory()
{
    if (history) {
        history->Flush();
    }
}

void Plugin::FlushHistoryAtEnd() noexcept
{
    try {
        const Util::CriticalSectionGuard guard(GetThreadController().GetUILock());
        FlushHistory();
    } catch (...) {
        Util::DebugTrace("Saving the history failed at the end"); // no use in ending the host
    }
}
