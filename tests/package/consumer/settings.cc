// settings FILE: a program elsewhere that reads settings of types and saves one.

#include "settings/settings.h"

#include <iostream>

using quarry::settings::Change;
using quarry::settings::Problem;
using quarry::settings::ValueReader;

int main(int /*argc*/, char** argv) {
  std::vector<Problem> problems;
  const auto saved =
      quarry::settings::Save(argv[1], {Change::Set("Log", "level", "debug")}, &problems);
  if (!saved) return 1;
  ValueReader reader(*saved);
  std::cout << reader.Integer("Agent", "numeric_option") << ' ' << reader.Text("log", "LEVEL")
            << '\n';
}
