// Process entry: the command name under which the executable was started
// decides everything (see ZnCLI.h and ZnCMD.h).
#include <string>

#include "ZnCLI.h"

int main(int argc, char** argv, char** envp) {
  std::string name = ZnCMD::getName(argv[0] != nullptr ? argv[0] : "");
  argv[0] = name.data();  // the Java side sees the bare name

  ZnCMD* command = ZnCLI::createCLI(name);
  if (command == nullptr) return 1;
  return command->run(argc, argv, envp);  // the object lives until the process ends
}
