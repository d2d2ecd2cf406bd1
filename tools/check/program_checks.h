// What the checks for an agent and for a client have in common.
#ifndef QUARRY_TOOLS_CHECK_PROGRAM_CHECKS_H_
#define QUARRY_TOOLS_CHECK_PROGRAM_CHECKS_H_

#include <list>
#include <string>
#include <vector>

#include "settings/document.h"
#include "settings/finding.h"

namespace quarry::tool {

// The remedy for an option that the text lacks: where to add it, and a name in the text that may
// have been meant.
std::string HintForAbsent(const std::string& section, const std::string& option,
                          settings::Document* document);

// A finding about an option that `section` lacks: at its header, or about no line when the section
// is missing as well.
settings::Finding FindingForAbsent(const settings::Rule& rule, const settings::OriginMap& origins,
                                   const std::string& section, const std::string& message,
                                   const std::string& hint);

// Findings about the options of `section` that are not among `known`; the message says who does not
// use them.
std::vector<settings::Finding> FindUnknownOptions(const settings::OriginMap& origins,
                                                  const std::string& section,
                                                  const std::list<std::string>& known,
                                                  const std::string& message);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_PROGRAM_CHECKS_H_
