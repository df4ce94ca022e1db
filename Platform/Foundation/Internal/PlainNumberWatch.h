// From when on changes of NSNumber's methods count.
#pragma once

namespace brindle::detail {

/// The methods are the library's own now. Called when the platform has been attached.
void watchNumberMethods();

}  // namespace brindle::detail
