#include "app/CommandTable.h"
#include "app/MeasureFrameFixture.h"
#include "measure/ShapeKinds.h"

#include <algorithm>
#include <gtest/gtest.h>

// Each kind a tool draws has one command for it, and every tool command is a
// checkable button that selects its tool in the document.
TEST_F(MeasureFrameTest, EveryDrawingToolHasOneCommandThatSelectsIt)
{
    for (const ShapeKind& kind : ShapeKinds()) {
        if (kind.tool != ToolCode::None) {
            EXPECT_EQ(std::ranges::count(Commands(), kind.tool, &CommandInfo::tool), 1) << int(kind.type);
        }
    }
    Start(false);
    CMeasureDoc* doc = ActiveDoc();
    ASSERT_NE(doc, nullptr);
    for (const CommandInfo& info : Commands()) {
        if (info.tool == ToolCode::None)
            continue;
        EXPECT_TRUE(info.checkable && info.icon) << info.id;
        ASSERT_TRUE(frame->RouteCommand(info.id)) << info.id;
        EXPECT_EQ(doc->GetCurrentTool(), int(info.tool)) << info.id;
        EXPECT_TRUE(frame->QueryCommand(info.id).IsChecked()) << info.id;
    }
}
