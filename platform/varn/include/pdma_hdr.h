// Host DMA (PDMA) buffer headers, 4 bytes at the start of the buffer.
#pragma once

#include "be_types.h"

// Towards the host.
struct thpdma_bufhdr_type {
  std::uint8_t bytes[4];
  using rsvd1 = be_bits<0, 0, 1>;
  using diagpkt = be_bits<0, 1, 1>;
  using rsvd2 = be_bits<0, 2, 10>;
  using th_pdma_q_num = be_bits<1, 4, 4>;
  using rsvd3 = be_bits<2, 0, 2>;
  using pdma_pktlen = be_bits<2, 2, 14>;
};
static_assert(sizeof(thpdma_bufhdr_type) == 4);

// From the host or the timer.
struct fhpdma_bufhdr_type {
  std::uint8_t bytes[4];
  using issu_vbit = be_bits<0, 0, 1>;
  using diagpkt = be_bits<0, 1, 1>;
  using traffic_type = be_bits<0, 2, 2>;
  using rsvd1 = be_bits<0, 4, 2>;
  using pkt_type = be_bits<0, 6, 2>;
  using rsvd2 = be_bits<1, 0, 4>;
  using queue_number = be_bits<1, 4, 4>;
  using rsvd3 = be_bits<2, 0, 2>;
  using pktlen = be_bits<2, 2, 14>;
};
static_assert(sizeof(fhpdma_bufhdr_type) == 4);
