// The home folder that the user database has for the user, whatever $HOME says, and paths that
// begin with a tilde in it.
//
//   NSString letters = stringByExpandingTildeInPathUsingUserHomePath("~/Letters"_ns);
//
// Nothing here raises. Any thread.
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSUserDefaults.h>

namespace brindle {

/// The home folder of the process's user, by the user database. Nil when there is no record of the
/// user, or the database fails or has more than 64 MiB to say.
inline NSString userHomePath(const NSUserDefaults& defaults) {
  return send<"userHomePath", NSString>(defaults);
}

/// The string itself when it does not begin with a tilde; otherwise what stands behind the tilde,
/// as a path in the user's home folder. "~name" is the folder of that name in it, and not another
/// user's. Nil when there is no home folder, and for nil.
inline NSString stringByExpandingTildeInPathUsingUserHomePath(const NSString& path) {
  return send<"stringByExpandingTildeInPathUsingUserHomePath", NSString>(path);
}

}  // namespace brindle
