#include "ZnVersion.h"

const char PRODUCT[] = "Orvex";

std::string ZnVersion::getProductName() {
  return PRODUCT;
}
