// The X input extension: whether there is one, and that its library is safe from other clients.
#pragma once

namespace gromlit {

// Whether the server has the extension; its opcode. To be asked before the first function of the
// extension's library is called on the connection: from then on events of the extension's own
// types that another client sent are forgotten before they are queued. The library believes what
// it finds in them, counts and sizes, and a few random bytes from anybody would keep it reading
// without end or beyond its memory; no client has anything to say to the program with them.
// Without the extension the opcode is 0. REQUIRES: the display is open.
bool FindInputExtension(int* opcode);

}  // namespace gromlit
