// Between the layer and the few lines of it that are linked into every module.
#pragma once

namespace wnplatform {

// Makes the LoadLibrary call of this thread that is bringing in the module fail. Outside of one, nothing.
void RefuseStart() noexcept;

}  // namespace wnplatform
