// The outcome of a burn-in desense test for a person, a program and a test system.
#pragma once

#include <string>

#include "Desense.h"

namespace TarnMeasure {

/// Where and with what it was measured.
struct DesenseOrigin {
    std::string utc, version, adapter, air, platform, command;
};

/// Channels, worst first, one a line.
std::string DesenseTable(const DesenseResult& result);
/// One channel as DesenseJson tells it.
std::string DesenseChannelJson(const DesenseChannel& channel);
/// JSON, with every figure but the bins.
std::string DesenseJson(const DesenseResult& result, const DesenseOrigin& origin);
/// One test case a channel: FAIL is a failure, INVALID an error; a channel that was left out is skipped.
std::string DesenseJunit(const DesenseResult& result, const DesenseOrigin& origin);
/// One self-contained page that prints well: verdict, chart, table, spurs, spectra, settings, messages.
std::string DesenseHtml(const DesenseResult& result, const DesenseOrigin& origin);

/// Writes these three as result.json, junit.xml and report.html. @return what couldn't be written and why
std::vector<std::string> WriteDesenseReports(const DesenseResult& result, const DesenseOrigin& origin,
                                             const std::string& folder);

}  // namespace TarnMeasure
