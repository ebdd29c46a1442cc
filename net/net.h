// The networking commands that need no window, registered into the keyword
// table once before any run.
#pragma once

namespace zv {

// ConnectFTP, DownFileFTP and UpFileFTP.
void RegistraFTP();

}  // namespace zv
