// Product identity.
#pragma once

#include <string>

extern const char PRODUCT[];

class ZnVersion {
 public:
  // A copy of the product name.
  static std::string getProductName();
};
