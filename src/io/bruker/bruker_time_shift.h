// The group delay of Bruker's digital filter: how many points the FID's time origin lies late.
#pragma once

namespace zolt {

// Firmware versions below 20 are looked up from DSPFVS and DECIM (0 outside the known table);
// from 20 on the spectrometer states the delay itself as GRPDLY. In points, positive; the
// dimension record's time shift is its negation.
double digitalFilterDelay(int dspfvs, int decim, double grpdly);

}  // namespace zolt
