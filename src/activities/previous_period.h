#pragma once

#include <cstdint>

#include "component/call.h"

namespace azcoll::activities {

/// A year without activities takes over those of the latest year before it; documented with the
/// service's class.
void InserisciAttivitàDaPeriodoPrecedente(Call& call) noexcept;

/// The company's regime (`CG25_FLGIVAQUATER`); 0 when it has no VAT management data, and after any
/// failure.
[[nodiscard]] std::int16_t LeggiFlagIvaQuater(Call& call) noexcept;

}  // namespace azcoll::activities
