// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/HistoryKeeper.h"

#include "frameworks/plugincore/ui/model/historyfile/HistoryFile.h"
#include "frameworks/qobase/util/DebugTrace.h"
#include "frameworks/qobase/util/Path.h"

namespace {

// Here the file belongs to one session; other products share it between sessions.
bool HasSessionFile(const PluginDefinition& definition)
{
    return definition.GetSessionMode() == SessionMode::OwnHistory ||
           definition.GetSessionMode() == SessionMode::KeptIdentifier;
}

} // namespace

HistoryKeeper::HistoryKeeper(const PluginDefinition& newDefinition, bool newIsOffline)
    : definition(newDefinition)
    , isOffline(newIsOffline)
{
}

void HistoryKeeper::onActionBegins() noexcept
{
    try {
        if (history) {
            history->onUserBegins();
        }
    } catch (...) {
        Util::DebugTrace("Reading the history failed");
    }
}

void HistoryKeeper::AddEntry(const String& text) noexcept
{
    try {
        if (history && !history->AddSnapshot(text)) {
            Util::DebugTrace("The history has no state for \"" + text + "\"");
        }
    } catch (...) {
        Util::DebugTrace("Adding to the history failed");
    }
}

void HistoryKeeper::onEditorAttached(bool isOpen)
{
    if (!isOpen) {
        Flush();
    } else if (history) {
        history->onUserBegins();
    }
}

void HistoryKeeper::onStateChanged()
{
    if (history) {
        history->onStateChanged();
    }
}

void HistoryKeeper::onIdle()
{
    if (history) {
        history->onIdle();
    }
}

void HistoryKeeper::Flush()
{
    if (history) {
        history->Flush();
    }
}

void HistoryKeeper::FlushAtEnd(Util::CriticalSection& uiLock) noexcept
{
    try {
        const Util::CriticalSectionGuard guard(uiLock);
        Flush();
    } catch (...) {
        Util::DebugTrace("Saving the history failed at the end"); // no use in ending the host
    }
}

String HistoryKeeper::MakeFilePath(const Util::Uuid& session) const
{
    if (isOffline) {
        return {};
    }
    const String folder = Util::Path::Join(
        Util::Path::Join(Util::Path::GetApplicationDataFolder(), definition.GetVendor()),
        definition.GetShortName());
    const auto made = Util::Path::MakeDirectory(
        folder, Util::Path::Recursive::Yes, Util::Path::Visibility::OwnerOnly);
    if (!made) {
        Util::DebugTrace(made.GetDescription()); // what comes next reports it to the user
    }
    const String ending = HasSessionFile(definition) ? "_" + Util::FormatUuid(session) : String("");
    return Util::Path::Join(folder,
                            String("Qo%1").arg(definition.GetShortName()) + ending + ".hst");
}

Util::Expected<void> HistoryKeeper::Save(Util::HistoryDelegate& instance,
                                         const String& path,
                                         const HistoryModel& model) const
{
    return path.IsEmpty() ? Util::Expected<void>()
                          : HistoryFile(FrameworkHistoryForm, instance).Save(path, model);
}

void HistoryKeeper::Load(Util::HistoryDelegate& instance,
                         const String& path,
                         HistoryModel& model) const
{
    const HistoryFile file(FrameworkHistoryForm, instance);
    if (path.IsEmpty()) {
        model = {};
        file.MakeInitialState(model);
    } else {
        file.Load(path, model);
    }
}
