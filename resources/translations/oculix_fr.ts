<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr">
<context>
    <name>CBinaryDlg</name>
    <message>
        <source>Binary</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Binary image</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Level</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CChooseDeviceDlg</name>
    <message>
        <source>Video Capture Device</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Video capture device:</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CDevicePropertiesDlg</name>
    <message>
        <source>Video Properties</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This camera offers no settings here. %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This camera offers no settings.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Default</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CDlgFullScreen</name>
    <message>
        <source>Full Screen</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CFormatDlg</name>
    <message>
        <source>Output size and format of the camera:</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CMeasureApp</name>
    <message>
        <source>Image File (*.bmp, *.jpg)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bitmap (*.bmp)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JPEG (*.jpg *.jpeg)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PNG (*.png)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>TIFF (*.tif *.tiff)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Targa (*.tga)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GIF (*.gif)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PCX (*.pcx)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>All pictures (*.bmp *.jpg *.jpeg *.png *.tif *.tiff *.tga *.gif *.pcx)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CMeasureDoc</name>
    <message>
        <source>Ex&amp;port data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Video</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The camera has not delivered a picture yet. Try again in a moment.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Capture</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot open the picture %1:
%2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot write the measurement data to %1:
%2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CProcessPropertiesDlg</name>
    <message>
        <source>Adjust</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Enable realtime process</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Processing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Flip &amp;Vertical</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Flip &amp;Horizontal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Gray</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Negative</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Binary</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Emboss</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Sharpen</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RGB gain</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Apply the gains</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Red:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Green:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Blue:</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Use the simulated camera instead of a real one.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show this help.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Measure on a microscope camera&apos;s live picture.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Picture file to open.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DlgSelectFile</name>
    <message>
        <source>Open</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No preview</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 x %2, %3 bits</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
