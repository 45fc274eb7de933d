#pragma once

#include "PipeWireRig.h"
#include "RequiredTools.h"

#include <gtest/gtest.h>
#include <memory>

// A test suite on one PipeWire rig, started before the suite's first test
// (and so before this process's first PipeWire connection). A test fails
// when the rig cannot start, or skips when its tools are missing and
// OCULIX_REQUIRE_TOOLS is not set.
template <class Base> class PipeWireRigSuite : public Base
{
protected:
    static void SetUpTestSuite()
    {
        if (PipeWireRig::MissingTools().isEmpty())
            s_rig = std::make_unique<PipeWireRig>();
    }
    static void TearDownTestSuite() { s_rig.reset(); }
    void SetUp() override
    {
        Base::SetUp();
        REQUIRE_TOOL(s_rig, PipeWireRig::MissingTools().join(QStringLiteral(", ")).toStdString());
        ASSERT_TRUE(s_rig->IsRunning()) << s_rig->Error().toStdString();
    }

    static inline std::unique_ptr<PipeWireRig> s_rig;
};
