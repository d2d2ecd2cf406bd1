// Settings for programs: read with their places, as values of types, from any thread, and saved
// without a change to the rest of the file. Link quarry::settings.
//
//   using namespace quarry::settings;
//   std::vector<Problem> problems;
//   const std::optional<Snapshot> snapshot = Snapshot::Load("agent.conf", &problems);
//   if (snapshot) {
//     ValueReader reader(*snapshot);
//     const std::int64_t threads = reader.Integer("Server", "threads", 4, {1, 1024});
//     ...
//     problems = reader.problems();
//   }
//   for (const Problem& problem : problems) Log(problem.Message());
//
//   problems.clear();
//   if (!Save("agent.conf", {Change::Set("Log", "level", "debug")}, &problems)) ...
//
// Snapshot (snapshot.h) is an immutable text, ValueReader (value_reader.h) reads it, Apply and Save
// (changes.h) change a text and a file, Problem (problem.h) is what is wrong and where. The library
// writes to no stream, throws std::bad_alloc alone and keeps no state of the process. Problems are
// added to those that a caller's vector has. A null `problems` is not allowed.
#ifndef QUARRY_SETTINGS_SETTINGS_H_
#define QUARRY_SETTINGS_SETTINGS_H_

#include "changes.h"
#include "problem.h"
#include "snapshot.h"
#include "value_reader.h"

#endif  // QUARRY_SETTINGS_SETTINGS_H_
