// The module's entry, its session flow and its main menu.
//
//   KNTRMN  the program's entry: start-up, reset, main menu, shutdown
//   RSKNTR  full reset of the profile block
//   IZKNTR  initialisation common to a session start and a reset
//   BGKNTR  start of a session: load the project's profile, keep a backup
//   MNKNTR  the main menu loop
//   PRMLIM  print the module's limits
//   SCKNTR  scale the plot to the bounding box with equal units
#pragma once

#include <array>
#include <string>

namespace kntr::profile {

inline constexpr const char* ModuleName = "KNTR";
inline constexpr const char* ModuleVersion = "1998-0223";
inline constexpr int MainMenuRows = 12;

// KNTRMN: run the module; returns the process exit status.
int KNTRMN();
void RSKNTR(bool& status);
void IZKNTR(bool& status);
void BGKNTR(bool& status);
void MNKNTR(bool& status);
void PRMLIM(bool& status);
void SCKNTR(bool& status);

// The rows of the main menu as the profile's state shows them now.
std::array<std::string, MainMenuRows> mainMenuRows();

}  // namespace kntr::profile
