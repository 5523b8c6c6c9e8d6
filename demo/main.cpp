#include <exception>
#include <iostream>

#include "demo/Demonstration.h"

/// calmdeck-demo FOLDER: shows what Calmdeck does, on a private desktop. Ends with 0 when all of it
/// was seen.
int main(int argc, char** argv) {
  try {
    demo::Demonstration demonstration(argc > 1 ? argv[1] : "run-screenshots");
    if (demonstration.run()) return 0;
    std::cerr << "Not everything changed and returned.\n";
  } catch (const std::exception& error) {
    std::cerr << "The demonstration failed: " << error.what() << '\n';
  }
  return 1;
}
