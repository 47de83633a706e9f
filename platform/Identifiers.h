// The names under which the system knows this product. Set at build time.
#pragma once

namespace dormel {

#ifndef DORMEL_APP_ID_BASE
#error "DORMEL_APP_ID_BASE comes from the build"
#endif

/// Prefix of every identifier that is ours: queue labels, the bundle identifier.
inline constexpr const char* APP_ID_BASE = DORMEL_APP_ID_BASE;
/// Names the scheduler job, the defaults domain and the record folder.
inline constexpr const char* BUNDLE_IDENTIFIER = DORMEL_APP_ID_BASE ".mac";

}  // namespace dormel
