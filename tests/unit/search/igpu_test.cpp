// The IGPU's VLAN classification: an exact match of the request's
// significant fields, answering the interface and its mark bits.
#include "npu/zephra/igpu.h"

#include "ctrl/tcam_entries.h"
#include "search_test_util.h"

namespace {

using namespace st;
using req = igpu_resp_match_request_;
using resp = igpu_resp_match_response_;

req two_tags(std::uint32_t outer, std::uint32_t inner) {
  req r{};
  req::first_vlan_id::set(r, outer);
  req::second_vlan_id::set(r, inner);
  req::bundle_logical_port_upper::set(r, 0x3);
  req::bundle_logical_port_lower::set(r, 0x21);
  req::frame_type::set(r, 2);
  return r;
}

resp classify(testkit::npu_harness& h, const req& r) {
  resp out{};
  h.on_thread([&](env_t env) {
    std::memcpy(dmem_at(env, REQ), r.bytes, sizeof r.bytes);
    igpu_launch_vlan_classification_lookup(env, REQ, RESP);
    out = record_at<resp>(env, RESP);
  });
  return out;
}

TEST(Igpu, AMatchAnswersTheInterfaceAndItsMarks) {
  testkit::npu_harness h;
  EXPECT_EQ(h.tables().tcam().write_igpu_entry(two_tags(100, 200), 1, 0x100000), ctrl::error::out_of_range);
  EXPECT_EQ(h.tables().tcam().delete_igpu_entry(two_tags(100, 200)), ctrl::error::not_found);
  EXPECT_EQ(resp::result::get(classify(h, two_tags(100, 200))), 0u);
  ASSERT_EQ(h.tables().tcam().write_igpu_entry(two_tags(100, 200), 0x1234, 0xABCDE), ctrl::error::none);
  req asked = two_tags(100, 200);
  req::reserved_1::set(asked, 0xFFFF);  // not compared
  const resp hit = classify(h, asked);
  EXPECT_EQ(resp::result::get(hit), 1u);
  EXPECT_EQ(resp::uidb_index::get(hit), 0x1234u);
  EXPECT_EQ(resp::mark_bits::get(hit), 0xABCDEu);
  EXPECT_EQ(resp::result::get(classify(h, two_tags(100, 201))), 0u);
  ASSERT_EQ(h.tables().tcam().delete_igpu_entry(two_tags(100, 200)), ctrl::error::none);
  EXPECT_EQ(resp::result::get(classify(h, two_tags(100, 200))), 0u);
}

}  // namespace
