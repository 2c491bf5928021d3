#include "capture/start_up.h"

int main(int argc, char** argv) {
  return gromlit::GromlitMain(argc, argv);
}
