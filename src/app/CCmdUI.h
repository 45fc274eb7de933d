#pragma once

// The state an update handler gives a command: whether it can run now and
// whether its menu item and button show a check mark.
class CCmdUI
{
public:
    explicit CCmdUI(int id)
        : m_nID(id)
    {
    }

    int GetID() const { return m_nID; }
    void Enable(bool on = true) { m_bEnabled = on; }
    void SetCheck(bool on = true) { m_bChecked = on; }
    bool IsEnabled() const { return m_bEnabled; }
    bool IsChecked() const { return m_bChecked; }

private:
    int m_nID;
    bool m_bEnabled = false;
    bool m_bChecked = false;
};
