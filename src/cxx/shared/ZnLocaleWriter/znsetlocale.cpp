// Install-time tool: records the user's locale in the global settings file unless it is
// already there. Problems are reported but never fail the installation.
#include "ZnLocaleWriter.h"

int main() {
  ZnLocaleWriter::writeCMSLocale();
  return 0;
}
