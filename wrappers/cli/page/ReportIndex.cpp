// SPDX-License-Identifier: ISC
#include "wrappers/cli/page/ReportIndex.h"

#include "wrappers/cli/page/Template.h"
#include "wrappers/cli/text/Version.h"

#include <nlohmann/json.hpp>

namespace Cli {

namespace {

std::string IndexJson(const ReportIndex& index)
{
    nlohmann::ordered_json json;
    json["version"] = GetVersion();
    json["subtitle"] = index.subtitle;
    json["columns"] = index.columns;
    json["totals"] = index.totals;
    json["rows"] = nlohmann::ordered_json::array();
    for (const IndexRow& row : index.rows) {
        json["rows"].push_back({{"name", row.name},
                                {"link", row.link},
                                {"failure", row.failure},
                                {"cells", row.cells}});
    }
    return EscapeScript(json.dump());
}

} // namespace

void WriteReportIndex(int descriptor, const ReportIndex& index)
{
    const Slots slots = {{"data", [&](const TextSink& sink) { sink(IndexJson(index)); }}};
    WriteTemplate("index.html", slots, descriptor);
}

} // namespace Cli
