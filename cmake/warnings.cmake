# quarry_warnings: what our own targets are compiled with; users never see it.
# The presets turn them into errors.
add_library(quarry_warnings INTERFACE)
target_compile_options(quarry_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow
  -Wold-style-cast -Wcast-align -Wnon-virtual-dtor -Woverloaded-virtual)
