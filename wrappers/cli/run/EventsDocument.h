// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/effect/Controls.h"
#include "wrappers/cli/files/OutputFile.h"
#include "wrappers/cli/report/AutoEvent.h"
#include "wrappers/cli/run/FileReport.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <span>
#include <string>

namespace Cli {

/// Collects the repairs of all recordings of a run and writes them as JSON: the object itself for
/// one recording that was named alone, else an array of such objects in the order of the inputs.
/// Recordings that failed have no place in it. What is collected lies in a nameless temporary file.
class EventsDocument {
public:
    enum class Form { Object, Array };

    /// Throws FileError when the file can't be written.
    EventsDocument(const FileName& name, Overwrite overwrite, Form newForm);

    /// Adds recording `number` of the run. Any thread. Throws FileError.
    void Add(size_t number,
             const FileReport& report,
             const Controls& controls,
             const EventSpool& spool,
             const BandAverage& average);

    /// The same of what --auto or --repair-labels repaired.
    void Add(size_t number, const FileReport& report, std::span<const AutoEvent> events);

    /// Writes the file, or nothing at all when the one object is missing. Throws FileError.
    void Finish();

private:
    struct Place {
        int64_t offset = 0;
        int64_t length = 0;
    };

    using EventVisitor = std::function<void(const std::string& json)>;

    void Collect(std::string_view text);
    void AddObject(size_t number,
                   const std::string& head,
                   const std::function<void(const EventVisitor&)>& visitEvents);

    OutputFile output;
    Form form;
    FileDescriptor collected;
    int64_t collectedLength = 0;
    std::map<size_t, Place> places;
    std::mutex mutex;
};

/// One event as JSON on one line.
std::string EventJson(const Event& event);
std::string EventJson(const AutoEvent& event);

} // namespace Cli
