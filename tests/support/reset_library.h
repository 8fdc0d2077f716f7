// The library as it is just after loading.
#pragma once

namespace qvx::tests {

// Puts every global that the library reads back to its initial value.
void resetLibrary();

}  // namespace qvx::tests
