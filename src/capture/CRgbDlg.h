#pragma once

#include <QDialog>

class ILiveDocument;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QTreeWidget;
class QWidget;

// "&Rgb": the red, green and blue gains the processing element applies to
// the live video, and a list of named presets kept in the settings file's
// "RGBGAIN" section. The gains live in the document; every change goes to
// the graph at once.
class CRgbDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kAdvancedHeight = 40;
    enum Column { ColNo, ColName, ColRed, ColGreen, ColBlue };

    explicit CRgbDlg(ILiveDocument* document, QWidget* parent = nullptr);
    ~CRgbDlg() override;

    void OnEnable(bool on);
    // A slider moved (0 red, 1 green, 2 blue).
    void OnSlider(int channel, int position);
    void OnAdd();
    void OnApply();
    void OnDelete();
    void OnAdvanced();
    void LoadList();
    void SaveList();
    // Closing by any route hands the gains over and saves the list.
    void done(int result) override;

    QCheckBox* EnableBox() const { return m_enable; }
    QSlider* Slider(int channel) const { return m_sliders[channel]; }
    QLabel* ValueText(int channel) const { return m_values[channel]; }
    QLineEdit* NameEdit() const { return m_name; }
    QTreeWidget* List() const { return m_list; }
    QPushButton* AdvancedButton() const { return m_btnAdvanced; }
    QPushButton* AddButton() const { return m_btnAdd; }
    bool IsAdvancedShown() const { return m_advancedShown; }

private:
    void EnableControls(bool on);
    void SendGains();

    ILiveDocument* m_document;
    QCheckBox* m_enable;
    QSlider* m_sliders[3];
    QLabel* m_values[3];
    QTreeWidget* m_list;
    QLineEdit* m_name;
    QPushButton* m_btnAdd;
    QPushButton* m_btnApply;
    QPushButton* m_btnDelete;
    QPushButton* m_btnAdvanced;
    QWidget* m_panel;
    bool m_advancedShown = false;
    int m_baseHeight = 0;
};
