#pragma once
// Files ".iscr" are script packages. The program that unpacks them stands beside the module; here they are
// only made known to the desktop and to the host's registry, so that opening one leads to that program.

/// Writes the association where it is not there yet. With no right to write nothing happens.
void InstallScriptHandler();
