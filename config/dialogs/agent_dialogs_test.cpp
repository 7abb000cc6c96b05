#include "config/dialogs/agent_dialogs.h"

#include "config/dialogs/dialog_test_support.h"

namespace px::dialogs {
namespace {

class AgentDialogTest : public DialogTest {
 protected:
  // The instance's configuration file naming the agents' INI files.
  std::string config(const std::string& email = "pxemio.ini", const std::string& merge = "pxmerge.ini") {
    return dir.write("north.ini", "[PXEMIO]\nIniFileName=" + (email.empty() ? "" : dir.file(email)) +
                                      "\n[PXMERGE]\nIniFileName=" +
                                      (merge.empty() ? "" : dir.file(merge)) + "\n");
  }
};

TEST_F(AgentDialogTest, ABlankIniFileNameClosesEveryDialogSilently) {
  std::string file = config("", "");
  EXPECT_TRUE(run_email_dialog(context, file));
  EXPECT_TRUE(run_job_card_dialog(context, file));
  EXPECT_TRUE(run_print_dialog(context, file));
  EXPECT_TRUE(run_currency_dialog(context, file));
  EXPECT_TRUE(op.shown().empty());
}

TEST_F(AgentDialogTest, EmailLoadsMasksAndSavesTheMailSection) {
  dir.write("pxemio.ini", "[Options]\nCycleTime=2000\nSeconds=no\nEMailSystem=VIM\n"
                          "[PxEmio-VIM]\nMailBoxID=orders\nPassword=north1\nPostOffice=/po\n");
  tk.on_dialog(133, [&](tk::Window d) {
    EXPECT_EQ(d.title(), "E-Mail Agent Configuration for north");
    EXPECT_EQ(text(d, 22), "999");
    EXPECT_TRUE(d.control(6).checked());
    EXPECT_EQ(text(d, 20), "******");
    EXPECT_TRUE(d.control(21).visible());
    EXPECT_FALSE(d.control(14).visible());
    EXPECT_TRUE(tk.type(d, 20, "X"));  // at the end of the stars
    EXPECT_EQ(text(d, 20), "*******");
    EXPECT_TRUE(tk.click(d, 7));
    EXPECT_TRUE(tk.replace_text(d, 22, "30"));
    EXPECT_TRUE(tk.click(d, 1));
  });
  ASSERT_TRUE(run_email_dialog(context, config()));
  std::string saved = dir.read("pxemio.ini");
  EXPECT_NE(saved.find("CycleTime=30\nSeconds=Yes\n"), std::string::npos) << saved;
  EXPECT_NE(saved.find("Password=north1X\n"), std::string::npos) << saved;
  EXPECT_NE(saved.find("PostOffice=/po\n"), std::string::npos) << saved;
}

TEST_F(AgentDialogTest, MapiHidesThePostOfficeRow) {
  dir.write("pxemio.ini", "[Options]\nEMailSystem=mapi\n[PxEmio-mapi]\nPostOffice=/keep\n");
  tk.on_dialog(133, [&](tk::Window d) {
    EXPECT_FALSE(d.control(21).visible());
    EXPECT_FALSE(d.control(18).visible());
    EXPECT_FALSE(d.control(23).visible());
    tk.on_dialog(149, [&](tk::Window j) {
      EXPECT_TRUE(tk.replace_text(j, 9, "ACK"));
      EXPECT_TRUE(tk.click(j, 1));
    });
    EXPECT_TRUE(tk.click(d, 15));
    EXPECT_TRUE(tk.click(d, 1));
  });
  ASSERT_TRUE(run_email_dialog(context, config()));
  std::string saved = dir.read("pxemio.ini");
  EXPECT_NE(saved.find("PostOffice=/keep\n"), std::string::npos);
  EXPECT_NE(saved.find("[JobCard]\nDefault=ACK\nJobCardPrefix=\nJobCardSuffix=\n"),
            std::string::npos) << saved;
}

TEST_F(AgentDialogTest, PrintRefusesAYieldOutOfRange) {
  dir.write("pxmerge.ini", "[Plexar]\nYieldPercent=150\n");
  tk.on_dialog(138, [&](tk::Window d) {
    EXPECT_EQ(d.focused_control(), 9);
    EXPECT_FALSE(d.control(11).visible());
    EXPECT_FALSE(d.control(10).visible());
    EXPECT_TRUE(tk.replace_text(d, 9, "-1x"));
    EXPECT_EQ(text(d, 9), "-1");
    int beeps = tk.beeps();
    EXPECT_TRUE(tk.click(d, 1));
    EXPECT_TRUE(d.exists());
    EXPECT_EQ(tk.beeps(), beeps + 1);
    EXPECT_TRUE(tk.click(d, 2));
  });
  ASSERT_TRUE(run_print_dialog(context, config()));
  EXPECT_EQ(op.numbers(), (std::vector<int>{303}));
  EXPECT_EQ(dir.read("pxmerge.ini"), "[Plexar]\nYieldPercent=150\n");
}

TEST_F(AgentDialogTest, CurrencyLocationFromItsDropDown) {
  dir.write("pxmerge.ini", "[Special]\nCurrencyLocation=right\n");
  tk.on_dialog(138, [&](tk::Window d) {
    tk.on_dialog(139, [&](tk::Window c) {
      EXPECT_EQ(c.focused_control(), 4);
      ASSERT_EQ(c.control(12).count(), 2);
      EXPECT_EQ(c.control(12).row(0), "Left");
      EXPECT_EQ(c.control(12).selected(), 1);
      EXPECT_TRUE(tk.click_row(c, 12, 0));
      EXPECT_TRUE(tk.click(c, 1));
    });
    EXPECT_TRUE(tk.click(d, 3));
    tk.on_dialog(140, [&](tk::Window s) {
      EXPECT_TRUE(tk.replace_text(s, 4, "~"));
      EXPECT_TRUE(tk.click(s, 1));
    });
    EXPECT_TRUE(tk.click(d, 4));
    EXPECT_TRUE(tk.click(d, 2));
  });
  ASSERT_TRUE(run_print_dialog(context, config()));
  std::string saved = dir.read("pxmerge.ini");
  EXPECT_NE(saved.find("CurrencyLocation=Left\n"), std::string::npos) << saved;
  EXPECT_NE(saved.find("NewlineChar=~\n"), std::string::npos) << saved;
}

}  // namespace
}  // namespace px::dialogs
