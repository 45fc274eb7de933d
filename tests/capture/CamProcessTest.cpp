#include "capture/CCamProcess.h"
#include "capture/HResult.h"
#include "image/ProcessOperations.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

namespace {

// The named methods and the operation each stands for, with the values its
// setter passes and its getter must hand back.
struct Named
{
    const char* name;
    ProcessOp op;
    std::function<int(ICamProcess&, int)> set;
    // Writes the switch and the parameters it reads (unused ones stay 0).
    std::function<int(ICamProcess&, int*, int*, int*, int*)> get;
    int parameters[3];
};

const Named kNamed[] = {
    { "FlipVertical", ProcessOp::Flip, [](ICamProcess& p, int on) { return p.SetFlipVertical(on); },
        [](ICamProcess& p, int* on, int*, int*, int*) { return p.GetFlipVertical(on); }, {} },
    { "FlipHorizontal", ProcessOp::Mirror, [](ICamProcess& p, int on) { return p.SetFlipHorizontal(on); },
        [](ICamProcess& p, int* on, int*, int*, int*) { return p.GetFlipHorizontal(on); }, {} },
    { "Gray", ProcessOp::Gray, [](ICamProcess& p, int on) { return p.SetGray(on); },
        [](ICamProcess& p, int* on, int*, int*, int*) { return p.GetGray(on); }, {} },
    { "Negative", ProcessOp::Negative, [](ICamProcess& p, int on) { return p.SetNegative(on); },
        [](ICamProcess& p, int* on, int*, int*, int*) { return p.GetNegative(on); }, {} },
    { "Binary", ProcessOp::Binary, [](ICamProcess& p, int on) { return p.SetBinary(on, 77); },
        [](ICamProcess& p, int* on, int* level, int*, int*) { return p.GetBinary(on, level); }, { 77 } },
    { "Emboss", ProcessOp::Emboss, [](ICamProcess& p, int on) { return p.SetEmboss(on); },
        [](ICamProcess& p, int* on, int*, int*, int*) { return p.GetEmboss(on); }, {} },
    { "Sharpen", ProcessOp::Sharpen, [](ICamProcess& p, int on) { return p.SetSharpen(on); },
        [](ICamProcess& p, int* on, int*, int*, int*) { return p.GetSharpen(on); }, {} },
    { "RgbGain", ProcessOp::Rgb, [](ICamProcess& p, int on) { return p.SetRgbGain(on, 5, -6, 7); },
        [](ICamProcess& p, int* on, int* r, int* g, int* b) { return p.GetRgbGain(on, r, g, b); },
        { 5, -6, 7 } },
};

} // namespace

// Each named setter switches its own operation, with its parameters in their
// order, and only that operation's named getter then reads it as on.
TEST(CamProcess, NamedSwitchesReachTheirOwnOperation)
{
    for (const Named& set : kNamed) {
        SCOPED_TRACE(set.name);
        CCamProcess process;
        ASSERT_EQ(set.set(process, 2), S_OK);
        ProcessSwitches state;
        for (const ProcessOperation& op : kProcessOperations)
            ASSERT_EQ(process.GetOperation(op.op, &state), S_OK);
        for (const ProcessOperation& op : kProcessOperations)
            EXPECT_EQ(state.*op.on, op.op == set.op) << op.name;
        const ProcessOperation& row = Operation(set.op);
        for (std::size_t k = 0; k < row.parameters.size(); ++k)
            EXPECT_EQ(state.*row.parameters[k].value, set.parameters[k]) << k;

        for (const Named& get : kNamed) {
            int on = -1;
            int values[3] = {};
            ASSERT_EQ(get.get(process, &on, &values[0], &values[1], &values[2]), S_OK) << get.name;
            EXPECT_EQ(on, &get == &set ? 1 : 0) << get.name;
            if (&get == &set) {
                EXPECT_TRUE(std::equal(values, values + 3, set.parameters)) << get.name;
            }
            EXPECT_EQ(get.get(process, nullptr, &values[0], &values[1], &values[2]), E_POINTER) << get.name;
        }
        ASSERT_EQ(set.set(process, 0), S_OK);
        int on = -1;
        int values[3] = {};
        set.get(process, &on, &values[0], &values[1], &values[2]);
        EXPECT_EQ(on, 0);
    }
}
