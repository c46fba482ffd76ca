#ifndef DOUBLES_INSTALLERDOUBLE_H
#define DOUBLES_INSTALLERDOUBLE_H

// Windows Installer, behind MsiReinstallProductW. A product that the test hasn't added is unknown
// (ERROR_UNKNOWN_PRODUCT, 1605).

#include <string>

class InstallerDouble
{
public:
  // An installed product; its repair gives the result.
  void AddProduct(const std::string& productCode, unsigned int result = 0);
};

InstallerDouble& Installer();

#endif
