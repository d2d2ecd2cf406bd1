// quarry-config: checks, queries and edits configuration files.

#include <exception>
#include <new>

#include "tools/commands/command_line.h"
#include "tools/terminal/errors.h"
#include "tools/terminal/random_source.h"
#include "tools/terminal/standard_streams.h"

using quarry::tool::DiagnosticsOf;
using quarry::tool::ExitStatusOf;
using quarry::tool::kExitFailed;
using quarry::tool::Message;
using quarry::tool::ReserveStandardStreams;
using quarry::tool::RunCommandLine;
using quarry::tool::SetRandomSource;
using quarry::tool::WriteDiagnostics;

int main(int argc, char** argv) {
  try {
    ReserveStandardStreams();
    SetRandomSource();
    return RunCommandLine({argv + 1, argv + argc});
  } catch (const quarry::settings::Error& error) {
    WriteDiagnostics(DiagnosticsOf(error));
    return ExitStatusOf(error);
  } catch (const std::bad_alloc&) {
    WriteDiagnostics({Message("out of memory")});
  } catch (const std::exception& error) {
    WriteDiagnostics({Message(error.what())});
  }
  return kExitFailed;
}
