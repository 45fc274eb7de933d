<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>CAboutDlg</name>
    <message>
        <source>About %1</source>
        <translation>关于 %1</translation>
    </message>
    <message>
        <source>Live pictures, measurements and recordings from USB microscope cameras.</source>
        <translation>USB 显微镜相机的实时画面、测量和录像。</translation>
    </message>
    <message>
        <source>User manual</source>
        <translation>用户手册</translation>
    </message>
</context>
<context>
    <name>CBinaryDlg</name>
    <message>
        <source>Binary</source>
        <translation>二值化</translation>
    </message>
    <message>
        <source>Binary image</source>
        <translation>二值图像</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>阈值</translation>
    </message>
</context>
<context>
    <name>CCameraControls</name>
    <message>
        <source>The camera has no device node.</source>
        <translation>该相机没有设备节点。</translation>
    </message>
</context>
<context>
    <name>CChooseDeviceDlg</name>
    <message>
        <source>Video Capture Device</source>
        <translation>视频采集设备</translation>
    </message>
    <message>
        <source>Video capture device:</source>
        <translation>视频采集设备：</translation>
    </message>
</context>
<context>
    <name>CDevicePropertiesDlg</name>
    <message>
        <source>Video Properties</source>
        <translation>视频属性</translation>
    </message>
    <message>
        <source>This camera offers no settings here. %1</source>
        <translation>该相机在此处没有可调设置。%1</translation>
    </message>
    <message>
        <source>This camera offers no settings.</source>
        <translation>该相机没有可调设置。</translation>
    </message>
    <message>
        <source>&amp;Default</source>
        <translation>默认(&amp;D)</translation>
    </message>
</context>
<context>
    <name>CDlgFullScreen</name>
    <message>
        <source>Full Screen</source>
        <translation>全屏</translation>
    </message>
</context>
<context>
    <name>CFlatFieldDlg</name>
    <message>
        <source>&amp;Take Blank Field</source>
        <translation>拍摄空白视场(&amp;T)</translation>
    </message>
    <message>
        <source>&amp;Correct the shading</source>
        <translation>校正亮度不均(&amp;C)</translation>
    </message>
    <message>
        <source>Flat-Field</source>
        <translation>平场校正</translation>
    </message>
    <message>
        <source>Move to an empty area of the slide, or take the slide away, keep the light as for the specimen, then take the blank field. It is kept for this camera and resolution and used again whenever they match.</source>
        <translation>移到载玻片的空白区域，或取下载玻片，保持与标本相同的照明，然后拍摄空白视场。它会按此相机和分辨率保存，并在二者匹配时再次使用。</translation>
    </message>
    <message>
        <source>No picture from the camera yet.</source>
        <translation>相机尚无图像。</translation>
    </message>
    <message>
        <source>A blank field is kept for this camera at %1 x %2.</source>
        <translation>已为此相机保存 %1 x %2 的空白视场。</translation>
    </message>
    <message>
        <source>No blank field is kept for this camera at %1 x %2.</source>
        <translation>尚未为此相机保存 %1 x %2 的空白视场。</translation>
    </message>
    <message>
        <source>Taking the blank field...</source>
        <translation>正在拍摄空白视场...</translation>
    </message>
    <message>
        <source>No frames came from the camera; the blank field was not taken.</source>
        <translation>相机没有传来图像；未拍摄空白视场。</translation>
    </message>
    <message>
        <source>The blank field cannot be kept: %1</source>
        <translation>无法保存空白视场：%1</translation>
    </message>
    <message>
        <source>The blank field is black in a colour and cannot correct the picture.</source>
        <translation>空白视场的某个颜色通道全黑，无法校正图像。</translation>
    </message>
</context>
<context>
    <name>CFolderEdit</name>
    <message>
        <source>Select Path:</source>
        <translation>选择路径：</translation>
    </message>
</context>
<context>
    <name>CFormatDlg</name>
    <message>
        <source>Output size and format of the camera:</source>
        <translation>相机的输出尺寸和格式：</translation>
    </message>
</context>
<context>
    <name>CGraticuleDlg</name>
    <message>
        <source>Detect from micrometer</source>
        <translation>从测微尺检测</translation>
    </message>
    <message>
        <source>Search only inside the ruler</source>
        <translation>仅在标尺范围内查找</translation>
    </message>
    <message>
        <source>Detect</source>
        <translation>检测</translation>
    </message>
    <message>
        <source>Accept</source>
        <translation>接受</translation>
    </message>
    <message>
        <source>Division value</source>
        <translation>分度值</translation>
    </message>
    <message>
        <source>No picture</source>
        <translation>没有图片</translation>
    </message>
</context>
<context>
    <name>CHistogramDock</name>
    <message>
        <source>Histogram</source>
        <translation>直方图</translation>
    </message>
</context>
<context>
    <name>CHistogramPanel</name>
    <message>
        <source>No live picture</source>
        <translation>没有实时图像</translation>
    </message>
    <message>
        <source>Clipped: %1 % bright, %2 % dark</source>
        <translation>溢出：亮部 %1 %，暗部 %2 %</translation>
    </message>
    <message>
        <source>&amp;Log scale</source>
        <translation>对数刻度(&amp;L)</translation>
    </message>
    <message>
        <source>Flash &amp;clipped</source>
        <translation>闪烁显示溢出像素(&amp;C)</translation>
    </message>
    <message>
        <source>Clipped pixels flash in the live picture: bright ones red, dark ones blue</source>
        <translation>实时画面中溢出的像素闪烁：过亮为红色，过暗为蓝色</translation>
    </message>
</context>
<context>
    <name>CInputTextDlg</name>
    <message>
        <source>Input Text</source>
        <translation>输入文字</translation>
    </message>
    <message>
        <source>Text(New line by pressing CTRL+ENTER)</source>
        <translation>文字（按 CTRL+ENTER 换行）</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>CIntervalCapDlg</name>
    <message>
        <source>Wait (sec)</source>
        <translation>等待（秒）</translation>
    </message>
    <message>
        <source>Please input an integer between 0 and 100!</source>
        <translation>请输入 0 到 100 之间的整数！</translation>
    </message>
    <message>
        <source>Interval (sec)</source>
        <translation>间隔（秒）</translation>
    </message>
    <message>
        <source>Please input an integer between 1 and 100!</source>
        <translation>请输入 1 到 100 之间的整数！</translation>
    </message>
    <message>
        <source>Images</source>
        <translation>图片数</translation>
    </message>
    <message>
        <source>Please input an integer between 1 and 1000!</source>
        <translation>请输入 1 到 1000 之间的整数！</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>开始</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Interval capture</source>
        <translation>间隔采集</translation>
    </message>
    <message>
        <source>Current</source>
        <translation>当前</translation>
    </message>
    <message>
        <source>File Name</source>
        <translation>文件名</translation>
    </message>
    <message>
        <source>No</source>
        <translation>序号</translation>
    </message>
</context>
<context>
    <name>CLiveFocus</name>
    <message>
        <source>Focus Peaking Color</source>
        <translation>峰值对焦颜色</translation>
    </message>
    <message>
        <source>Focus stacking: sweep the focus through the specimen, then choose Focus Stack again.</source>
        <translation>景深合成：在标本范围内转动对焦，然后再次选择景深合成。</translation>
    </message>
    <message>
        <source>Focus stacking cancelled.</source>
        <translation>景深合成已取消。</translation>
    </message>
    <message>
        <source>No frame reached the focus stack: the camera sent none.</source>
        <translation>没有帧进入景深合成：相机未发送任何帧。</translation>
    </message>
    <message>
        <source>The focus stack could not be made: %1</source>
        <translation>无法完成景深合成：%1</translation>
    </message>
    <message>
        <source>Focus Stack</source>
        <translation>景深合成</translation>
    </message>
    <message>
        <source>Some frames were left out of the focus stack: %1</source>
        <translation>部分帧未纳入景深合成：%1</translation>
    </message>
    <message>
        <source>Live Stack %1</source>
        <translation>实时合成 %1</translation>
    </message>
    <message>
        <source>Live Stack %1 Depth</source>
        <translation>实时合成 %1 深度</translation>
    </message>
    <message>
        <source>Sharpness: %1</source>
        <translation>清晰度：%1</translation>
    </message>
</context>
<context>
    <name>CMainFrame</name>
    <message>
        <source>Already having one instance running!</source>
        <translation>已有一个实例正在运行！</translation>
    </message>
</context>
<context>
    <name>CMeasureApp</name>
    <message>
        <source>Image File (*.bmp, *.jpg)</source>
        <translation>图像文件 (*.bmp, *.jpg)</translation>
    </message>
    <message>
        <source>Bitmap (*.bmp)</source>
        <translation>位图 (*.bmp)</translation>
    </message>
    <message>
        <source>JPEG (*.jpg *.jpeg)</source>
        <translation>JPEG (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <source>PNG (*.png)</source>
        <translation>PNG (*.png)</translation>
    </message>
    <message>
        <source>TIFF (*.tif *.tiff)</source>
        <translation>TIFF (*.tif *.tiff)</translation>
    </message>
    <message>
        <source>Targa (*.tga)</source>
        <translation>Targa (*.tga)</translation>
    </message>
    <message>
        <source>GIF (*.gif)</source>
        <translation>GIF (*.gif)</translation>
    </message>
    <message>
        <source>PCX (*.pcx)</source>
        <translation>PCX (*.pcx)</translation>
    </message>
    <message>
        <source>All pictures (*.bmp *.jpg *.jpeg *.png *.tif *.tiff *.tga *.gif *.pcx)</source>
        <translation>所有图片 (*.bmp *.jpg *.jpeg *.png *.tif *.tiff *.tga *.gif *.pcx)</translation>
    </message>
    <message>
        <source>The user manual %1 is missing. Reinstall the program to get it back.</source>
        <translation>找不到用户手册 %1。请重新安装本程序。</translation>
    </message>
    <message>
        <source>No program to show %1 was found. Install a PDF viewer.</source>
        <translation>找不到可显示 %1 的程序。请安装 PDF 阅读器。</translation>
    </message>
    <message>
        <source>No file manager could show %1.</source>
        <translation>没有文件管理器可以显示 %1。</translation>
    </message>
    <message>
        <source>Camera connected: %1. &quot;New Preview&quot; shows its video.</source>
        <translation>相机已连接：%1。“新建预览”可显示其视频。</translation>
    </message>
    <message>
        <source>Oculix is already running but does not answer. Close it, or end it if it hangs, then start Oculix again.</source>
        <translation>Oculix 已在运行，但没有响应。请关闭它（如果它已挂起，请结束它），然后重新启动 Oculix。</translation>
    </message>
    <message>
        <source>Oculix</source>
        <translation>Oculix</translation>
    </message>
    <message>
        <source>Focus Stack Pictures</source>
        <translation>景深合成图片</translation>
    </message>
    <message>
        <source>Choose at least two pictures of the same field, taken at different focus.</source>
        <translation>请至少选择两张同一视场、不同对焦位置拍摄的图片。</translation>
    </message>
    <message>
        <source>Fusing the pictures...</source>
        <translation>正在合成图片...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>%1 could not be read: %2</source>
        <translation>无法读取 %1：%2</translation>
    </message>
    <message>
        <source>%1 does not fit the series: %2</source>
        <translation>%1 与该序列不符：%2</translation>
    </message>
    <message>
        <source>Stack %1</source>
        <translation>合成 %1</translation>
    </message>
    <message>
        <source>Stitch Pictures, in the Order Taken</source>
        <translation>拼接图像（按拍摄顺序）</translation>
    </message>
    <message>
        <source>Cannot read the picture %1:
%2</source>
        <translation>无法读取图像 %1：
%2</translation>
    </message>
    <message>
        <source>The picture %1 cannot be placed: %2.
Each picture must overlap one taken before it by about a fifth.</source>
        <translation>无法放置图像 %1：%2。
每张图像须与之前拍摄的某张图像重叠约五分之一。</translation>
    </message>
    <message>
        <source>Mosaic of %1 pictures</source>
        <translation>%1 张图像的拼接图</translation>
    </message>
</context>
<context>
    <name>CMeasureColorDlg</name>
    <message>
        <source>Measure Setting</source>
        <translation>测量设置</translation>
    </message>
    <message>
        <source>Measure Color</source>
        <translation>测量颜色</translation>
    </message>
    <message>
        <source>Measurement</source>
        <translation>测量</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>点</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>文字</translation>
    </message>
    <message>
        <source>Others</source>
        <translation>其他</translation>
    </message>
    <message>
        <source>Precision</source>
        <translation>精度</translation>
    </message>
    <message>
        <source>Font Size</source>
        <translation>字体大小</translation>
    </message>
    <message>
        <source>Font 
Background</source>
        <translation>字体
背景</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>CMeasureDoc</name>
    <message>
        <source>Ex&amp;port data</source>
        <translation>导出数据(&amp;P)</translation>
    </message>
    <message>
        <source>Video</source>
        <translation>视频</translation>
    </message>
    <message>
        <source>The camera has not delivered a picture yet. Try again in a moment.</source>
        <translation>相机尚未提供画面。请稍后再试。</translation>
    </message>
    <message>
        <source>Capture</source>
        <translation>拍照</translation>
    </message>
    <message>
        <source>Cannot open the picture %1:
%2</source>
        <translation>无法打开图片 %1：
%2</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>打开</translation>
    </message>
    <message>
        <source>Cannot write the measurement data to %1:
%2</source>
        <translation>无法将测量数据写入 %1：
%2</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>导出</translation>
    </message>
    <message>
        <source>The camera &quot;%1&quot; is not connected. Plug it in again to go on with the live video.</source>
        <translation>相机“%1”未连接。请重新插入以继续实时视频。</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>预览</translation>
    </message>
    <message>
        <source>Picture has successfully saved to</source>
        <translation>图片已成功保存到</translation>
    </message>
    <message>
        <source>Hint</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Save image failed.</source>
        <translation>保存图片失败。</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Failed to write JPEG file Summary information!</source>
        <translation>写入 JPEG 文件摘要信息失败！</translation>
    </message>
    <message>
        <source>the picture was saved but its measurements could not be kept: %1</source>
        <translation>图片已保存，但无法保留其测量数据：%1</translation>
    </message>
    <message>
        <source>this picture&apos;s calibration is not valid; the current calibration is used</source>
        <translation>此图片的校准无效；将使用当前校准</translation>
    </message>
    <message>
        <source>Some measurements of this picture are not shown: %1</source>
        <translation>此图片的部分测量未显示：%1</translation>
    </message>
    <message>
        <source>No picture from the camera to analyze.</source>
        <translation>没有可分析的相机图像。</translation>
    </message>
    <message>
        <source>Analyze Particles</source>
        <translation>颗粒分析</translation>
    </message>
    <message>
        <source>Export ImageJ ROIs</source>
        <translation>导出 ImageJ ROI</translation>
    </message>
    <message>
        <source>ImageJ ROI set (*.zip)</source>
        <translation>ImageJ ROI 集 (*.zip)</translation>
    </message>
    <message>
        <source>Import ImageJ ROIs</source>
        <translation>导入 ImageJ ROI</translation>
    </message>
    <message>
        <source>ImageJ ROIs (*.zip *.roi)</source>
        <translation>ImageJ ROI (*.zip *.roi)</translation>
    </message>
    <message>
        <source>There are no shapes to export.</source>
        <translation>没有可导出的图形。</translation>
    </message>
    <message>
        <source>Cannot write %1:
%2</source>
        <translation>无法写入 %1：
%2</translation>
    </message>
    <message>
        <source>The file is too large for ROIs.</source>
        <translation>文件过大，不是 ROI 文件。</translation>
    </message>
    <message>
        <source>Cannot import %1:
%2</source>
        <translation>无法导入 %1：
%2</translation>
    </message>
    <message>
        <source>%1 of the %2 ROIs have no kind of shape here (ellipses, open lines, composite shapes) and were left out.</source>
        <translation>%2 个 ROI 中有 %1 个在此没有对应的图形（椭圆、开放折线、组合图形），已被略过。</translation>
    </message>
    <message>
        <source>White Balance</source>
        <translation>白平衡</translation>
    </message>
    <message>
        <source>Draw a rectangle over something neutral (white or gray), then choose White Balance again.</source>
        <translation>在中性（白色或灰色）区域上绘制一个矩形，然后再次选择白平衡。</translation>
    </message>
    <message>
        <source>The colour cast is stronger than the gains reach: the rectangle is as neutral as they allow. Adjust the lamp or the camera&apos;s white balance.</source>
        <translation>色偏超出增益范围：矩形已在增益允许范围内尽量中性。请调整灯光或相机的白平衡。</translation>
    </message>
    <message>
        <source>The rectangle is too small; draw it larger over the neutral area.</source>
        <translation>矩形太小；请在中性区域上画得大一些。</translation>
    </message>
    <message>
        <source>No picture from the camera yet.</source>
        <translation>相机尚无图像。</translation>
    </message>
    <message>
        <source>The rectangle lies outside the picture.</source>
        <translation>矩形在图像之外。</translation>
    </message>
</context>
<context>
    <name>CMosaicDock</name>
    <message>
        <source>Move the stage slowly over the specimen</source>
        <translation>在标本上缓慢移动载物台</translation>
    </message>
    <message>
        <source>Lost: move back over covered ground</source>
        <translation>跟踪丢失：请移回已覆盖的区域</translation>
    </message>
    <message>
        <source>Tracking; fields in the mosaic: %1</source>
        <translation>正在跟踪；拼图中的视野数：%1</translation>
    </message>
    <message>
        <source>Live Mosaic %1</source>
        <translation>实时拼图 %1</translation>
    </message>
    <message>
        <source>Mosaic</source>
        <translation>拼图</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>停止(&amp;S)</translation>
    </message>
    <message>
        <source>Open the mosaic as a picture</source>
        <translation>将拼图作为图像打开</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>取消(&amp;C)</translation>
    </message>
    <message>
        <source>Throw the mosaic away</source>
        <translation>丢弃拼图</translation>
    </message>
</context>
<context>
    <name>CMosaicPanel</name>
    <message>
        <source>Wheel to zoom, drag to pan, double-click to see all of it</source>
        <translation>滚轮缩放，拖动平移，双击查看全部</translation>
    </message>
</context>
<context>
    <name>CNoCameraHint</name>
    <message>
        <source>No camera found</source>
        <translation>未找到相机</translation>
    </message>
    <message>
        <source>Connect a USB microscope camera: it is found as soon as it is plugged in, and &quot;New Preview&quot; then shows its video. Cameras that other programs reach through PipeWire are listed too.

You can also try measuring with the simulated camera.</source>
        <translation>请连接 USB 显微镜相机：插入后即可被发现，然后“新建预览”会显示其视频。其他程序通过 PipeWire 使用的相机也会列出。

您也可以先用模拟相机试用测量功能。</translation>
    </message>
    <message>
        <source>Use the Simulated Camera</source>
        <translation>使用模拟相机</translation>
    </message>
</context>
<context>
    <name>CParticleResultsDlg</name>
    <message>
        <source>Particles</source>
        <translation>颗粒</translation>
    </message>
    <message>
        <source>No.</source>
        <translation>序号</translation>
    </message>
    <message>
        <source>Area (%1)</source>
        <translation>面积 (%1)</translation>
    </message>
    <message>
        <source>Perimeter (%1)</source>
        <translation>周长 (%1)</translation>
    </message>
    <message>
        <source>Diameter (%1)</source>
        <translation>直径 (%1)</translation>
    </message>
    <message>
        <source>Circularity</source>
        <translation>圆度</translation>
    </message>
    <message>
        <source>X (%1)</source>
        <translation>X (%1)</translation>
    </message>
    <message>
        <source>Y (%1)</source>
        <translation>Y (%1)</translation>
    </message>
    <message>
        <source>%1 particles, mean area %2 %3 (standard deviation %4), total %5 %3, %6 % of the picture</source>
        <translation>%1 个颗粒，平均面积 %2 %3（标准差 %4），总面积 %5 %3，占图像 %6 %</translation>
    </message>
    <message>
        <source>Export CSV...</source>
        <translation>导出 CSV...</translation>
    </message>
    <message>
        <source>Cannot write %1: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
    <message>
        <source>Export CSV</source>
        <translation>导出 CSV</translation>
    </message>
    <message>
        <source>CSV (*.csv)</source>
        <translation>CSV (*.csv)</translation>
    </message>
    <message>
        <source>Area %1 to %2 %3, %4 classes</source>
        <translation>面积 %1 至 %2 %3，共 %4 组</translation>
    </message>
</context>
<context>
    <name>CParticlesDlg</name>
    <message>
        <source>Analyze Particles</source>
        <translation>颗粒分析</translation>
    </message>
    <message>
        <source>Gray levels from-to</source>
        <translation>灰度范围</translation>
    </message>
    <message>
        <source>Automatic (Otsu)</source>
        <translation>自动（Otsu）</translation>
    </message>
    <message>
        <source>Automatic (ImageJ default)</source>
        <translation>自动（ImageJ 默认）</translation>
    </message>
    <message>
        <source>Automatic (Triangle)</source>
        <translation>自动（三角法）</translation>
    </message>
    <message>
        <source>Dark particles on a light background</source>
        <translation>亮背景上的暗颗粒</translation>
    </message>
    <message>
        <source>Exclude particles on the edges</source>
        <translation>排除边缘上的颗粒</translation>
    </message>
    <message>
        <source>Include holes</source>
        <translation>包含孔洞</translation>
    </message>
    <message>
        <source>Split touching particles</source>
        <translation>分离相互接触的颗粒</translation>
    </message>
    <message>
        <source>Threshold:</source>
        <translation>阈值：</translation>
    </message>
    <message>
        <source>Gray levels:</source>
        <translation>灰度：</translation>
    </message>
    <message>
        <source>Area (pixels):</source>
        <translation>面积（像素）：</translation>
    </message>
    <message>
        <source>Circularity:</source>
        <translation>圆度：</translation>
    </message>
</context>
<context>
    <name>CProcessPropertiesDlg</name>
    <message>
        <source>&amp;Enable realtime process</source>
        <translation>启用实时处理(&amp;E)</translation>
    </message>
    <message>
        <source>Processing</source>
        <translation>处理</translation>
    </message>
    <message>
        <source>Flip &amp;Vertical</source>
        <translation>垂直翻转(&amp;V)</translation>
    </message>
    <message>
        <source>Flip &amp;Horizontal</source>
        <translation>水平翻转(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;Gray</source>
        <translation>灰度(&amp;G)</translation>
    </message>
    <message>
        <source>&amp;Negative</source>
        <translation>负片(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Binary</source>
        <translation>二值化(&amp;B)</translation>
    </message>
    <message>
        <source>&amp;Emboss</source>
        <translation>浮雕(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Sharpen</source>
        <translation>锐化(&amp;S)</translation>
    </message>
    <message>
        <source>RGB gain</source>
        <translation>RGB 增益</translation>
    </message>
    <message>
        <source>&amp;Apply the gains</source>
        <translation>应用增益(&amp;A)</translation>
    </message>
    <message>
        <source>Red:</source>
        <translation>红：</translation>
    </message>
    <message>
        <source>Green:</source>
        <translation>绿：</translation>
    </message>
    <message>
        <source>Blue:</source>
        <translation>蓝：</translation>
    </message>
    <message>
        <source>Real-time Processing</source>
        <translation>实时处理</translation>
    </message>
</context>
<context>
    <name>CRecordDlg</name>
    <message>
        <source>Start to record</source>
        <translation>准备录制</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>正在录制</translation>
    </message>
    <message>
        <source>Record paused</source>
        <translation>录制已暂停</translation>
    </message>
    <message>
        <source>Record stoped</source>
        <translation>录制已停止</translation>
    </message>
    <message>
        <source>Browse</source>
        <translation>浏览</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>开始</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>暂停</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>录像</translation>
    </message>
    <message>
        <source>%1 already existed. Want to replace it?</source>
        <translation>%1 已存在。要替换它吗？</translation>
    </message>
    <message>
        <source>ended at %1</source>
        <translation>结束于 %1</translation>
    </message>
</context>
<context>
    <name>CResolutionDlg</name>
    <message>
        <source>Set resolution</source>
        <translation>设置分辨率</translation>
    </message>
    <message>
        <source>Resolution of saved pictures</source>
        <translation>保存图片的分辨率</translation>
    </message>
</context>
<context>
    <name>CRgbDlg</name>
    <message>
        <source>No.,35;Name,130;Red,50;Green,50;Blue,50</source>
        <translation>序号,35;名称,130;红,50;绿,50;蓝,50</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>启用</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>添加</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>应用</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Advanced -&gt;</source>
        <translation>高级 -&gt;</translation>
    </message>
    <message>
        <source>Rgb adjustment</source>
        <translation>RGB 调节</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>红</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>绿</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>蓝</translation>
    </message>
    <message>
        <source>Add current rgb values to list</source>
        <translation>将当前 RGB 值添加到列表</translation>
    </message>
    <message>
        <source>Apply selected item to camera parameter</source>
        <translation>将所选项应用到相机参数</translation>
    </message>
    <message>
        <source>Delete selected item from list</source>
        <translation>从列表中删除所选项</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Select One item first</source>
        <translation>请先选择一项</translation>
    </message>
    <message>
        <source>Hint</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Advanced &lt;-</source>
        <translation>高级 &lt;-</translation>
    </message>
</context>
<context>
    <name>CRulerSettingDlg</name>
    <message>
        <source>Ruler Setting</source>
        <translation>标尺设置</translation>
    </message>
    <message>
        <source>Real Results</source>
        <translation>实际结果</translation>
    </message>
    <message>
        <source>X-Ruler</source>
        <translation>X 标尺</translation>
    </message>
    <message>
        <source>Y-Ruler</source>
        <translation>Y 标尺</translation>
    </message>
    <message>
        <source>Physical Ruler</source>
        <translation>物理标尺</translation>
    </message>
    <message>
        <source>X-Ruler Unit</source>
        <translation>X 标尺长度</translation>
    </message>
    <message>
        <source>Y-Ruler Unit</source>
        <translation>Y 标尺长度</translation>
    </message>
    <message>
        <source>Ruler Unit</source>
        <translation>标尺单位</translation>
    </message>
    <message>
        <source>Image Ruler(pixel)</source>
        <translation>图像标尺（像素）</translation>
    </message>
    <message>
        <source>Pause mode measure</source>
        <translation>暂停模式测量</translation>
    </message>
    <message>
        <source>Magnification</source>
        <translation>放大倍数</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>打开</translation>
    </message>
    <message>
        <source>Detect from micrometer</source>
        <translation>从测微尺检测</translation>
    </message>
    <message>
        <source>There is no picture to look for a micrometer in.</source>
        <translation>没有可用于查找测微尺的图片。</translation>
    </message>
</context>
<context>
    <name>CSaveAsDlg</name>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Image type</source>
        <translation>图片类型</translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation>文件夹：</translation>
    </message>
    <message>
        <source>File name:</source>
        <translation>文件名：</translation>
    </message>
    <message>
        <source>Title:</source>
        <translation>标题：</translation>
    </message>
    <message>
        <source>Subject:</source>
        <translation>主题：</translation>
    </message>
    <message>
        <source>Author:</source>
        <translation>作者：</translation>
    </message>
    <message>
        <source>Comment:</source>
        <translation>备注：</translation>
    </message>
    <message>
        <source>Please select folder for the saving file.</source>
        <translation>请选择保存文件的文件夹。</translation>
    </message>
    <message>
        <source>Hint</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>%1 already existed. Want to replace it?</source>
        <translation>%1 已存在。要替换它吗？</translation>
    </message>
</context>
<context>
    <name>CSaveOptionDlg</name>
    <message>
        <source>Save Option</source>
        <translation>保存选项</translation>
    </message>
    <message>
        <source>Title:</source>
        <translation>标题：</translation>
    </message>
    <message>
        <source>Author:</source>
        <translation>作者：</translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation>文件夹：</translation>
    </message>
    <message>
        <source>Prefix:</source>
        <translation>前缀：</translation>
    </message>
    <message>
        <source>Number:</source>
        <translation>编号：</translation>
    </message>
    <message>
        <source>Image type:</source>
        <translation>图片类型：</translation>
    </message>
    <message>
        <source>Please select folder for the saving file.</source>
        <translation>请选择保存文件的文件夹。</translation>
    </message>
    <message>
        <source>Hint</source>
        <translation>提示</translation>
    </message>
</context>
<context>
    <name>CSaveOverlayGroup</name>
    <message>
        <source>Burn into the picture</source>
        <translation>写入图片</translation>
    </message>
    <message>
        <source>Measurement</source>
        <translation>测量</translation>
    </message>
    <message>
        <source>Ruler</source>
        <translation>标尺</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>刻度</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>日期</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>标题</translation>
    </message>
</context>
<context>
    <name>Command</name>
    <message>
        <source>&amp;New Preview	Ctrl+N</source>
        <translation>新建预览(&amp;N)	Ctrl+N</translation>
    </message>
    <message>
        <source>New preview</source>
        <translation>新建预览</translation>
    </message>
    <message>
        <source>&amp;Open...	Ctrl+O</source>
        <translation>打开(&amp;O)...	Ctrl+O</translation>
    </message>
    <message>
        <source>Open an existing image</source>
        <translation>打开已有的图像</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>关闭(&amp;C)</translation>
    </message>
    <message>
        <source>Close the active imaget</source>
        <translation>关闭当前图像</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>退出(&amp;X)</translation>
    </message>
    <message>
        <source>&amp;Status Bar</source>
        <translation>状态栏(&amp;S)</translation>
    </message>
    <message>
        <source>Show or hide the status bar</source>
        <translation>显示或隐藏状态栏</translation>
    </message>
    <message>
        <source>&amp;Tool Bar</source>
        <translation>工具栏(&amp;T)</translation>
    </message>
    <message>
        <source>Show or hide the toolbar</source>
        <translation>显示或隐藏工具栏</translation>
    </message>
    <message>
        <source>&amp;Process Bar</source>
        <translation>处理栏(&amp;P)</translation>
    </message>
    <message>
        <source>Show or hide Process Bar</source>
        <translation>显示或隐藏处理栏</translation>
    </message>
    <message>
        <source>&amp;Measure Bar</source>
        <translation>测量栏(&amp;M)</translation>
    </message>
    <message>
        <source>Show or hide the measure bar</source>
        <translation>显示或隐藏测量栏</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>全屏(&amp;F)</translation>
    </message>
    <message>
        <source>Toggles full screen mode On and Off</source>
        <translation>打开或关闭全屏模式</translation>
    </message>
    <message>
        <source>Fullscreen camera video</source>
        <translation>全屏显示相机视频</translation>
    </message>
    <message>
        <source>&amp;Adjust</source>
        <translation>调节(&amp;A)</translation>
    </message>
    <message>
        <source>Show video adjusting dialog</source>
        <translation>显示视频调节对话框</translation>
    </message>
    <message>
        <source>&amp;Enable</source>
        <translation>启用(&amp;E)</translation>
    </message>
    <message>
        <source>Enable realtime process</source>
        <translation>启用实时处理</translation>
    </message>
    <message>
        <source>Flip &amp;Horizontal</source>
        <translation>水平翻转(&amp;H)</translation>
    </message>
    <message>
        <source>Flip image horizontal </source>
        <translation>水平翻转图像</translation>
    </message>
    <message>
        <source>Flip &amp;Vertical</source>
        <translation>垂直翻转(&amp;V)</translation>
    </message>
    <message>
        <source>Flip image vertical</source>
        <translation>垂直翻转图像</translation>
    </message>
    <message>
        <source>&amp;Gray</source>
        <translation>灰度(&amp;G)</translation>
    </message>
    <message>
        <source>Gray image</source>
        <translation>灰度图像</translation>
    </message>
    <message>
        <source>&amp;Negative</source>
        <translation>负片(&amp;N)</translation>
    </message>
    <message>
        <source>Negative image</source>
        <translation>负片图像</translation>
    </message>
    <message>
        <source>&amp;Emboss</source>
        <translation>浮雕(&amp;E)</translation>
    </message>
    <message>
        <source>Emboss image</source>
        <translation>浮雕图像</translation>
    </message>
    <message>
        <source>&amp;Sharpen</source>
        <translation>锐化(&amp;S)</translation>
    </message>
    <message>
        <source>Sharpen image</source>
        <translation>锐化图像</translation>
    </message>
    <message>
        <source>&amp;Binary</source>
        <translation>二值化(&amp;B)</translation>
    </message>
    <message>
        <source>Binary image</source>
        <translation>二值图像</translation>
    </message>
    <message>
        <source>Mo&amp;ve</source>
        <translation>移动(&amp;V)</translation>
    </message>
    <message>
        <source>Move elements</source>
        <translation>移动图形</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>点</translation>
    </message>
    <message>
        <source>&amp;Line</source>
        <translation>直线(&amp;L)</translation>
    </message>
    <message>
        <source>Draw line</source>
        <translation>绘制直线</translation>
    </message>
    <message>
        <source>&amp;Angle</source>
        <translation>角度(&amp;A)</translation>
    </message>
    <message>
        <source>Draw angle </source>
        <translation>绘制角度</translation>
    </message>
    <message>
        <source>&amp;Rect</source>
        <translation>矩形(&amp;R)</translation>
    </message>
    <message>
        <source>Draw rect</source>
        <translation>绘制矩形</translation>
    </message>
    <message>
        <source>&amp;Circle</source>
        <translation>圆(&amp;C)</translation>
    </message>
    <message>
        <source>Draw circle</source>
        <translation>绘制圆</translation>
    </message>
    <message>
        <source>&amp;TriCircle</source>
        <translation>三点圆(&amp;T)</translation>
    </message>
    <message>
        <source>Draw tricircle</source>
        <translation>绘制三点圆</translation>
    </message>
    <message>
        <source>&amp;Polygon</source>
        <translation>多边形(&amp;P)</translation>
    </message>
    <message>
        <source>Draw polygon</source>
        <translation>绘制多边形</translation>
    </message>
    <message>
        <source>Count&amp;ing</source>
        <translation>计数(&amp;I)</translation>
    </message>
    <message>
        <source>Draw counting</source>
        <translation>绘制计数标记</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>删除(&amp;D)</translation>
    </message>
    <message>
        <source>Delete one element</source>
        <translation>删除一个图形</translation>
    </message>
    <message>
        <source>Delete&amp;All</source>
        <translation>全部删除(&amp;A)</translation>
    </message>
    <message>
        <source>Delete all elements</source>
        <translation>删除所有图形</translation>
    </message>
    <message>
        <source>Calibratio&amp;n</source>
        <translation>校准(&amp;N)</translation>
    </message>
    <message>
        <source>Calibration</source>
        <translation>校准</translation>
    </message>
    <message>
        <source>&amp;Setting</source>
        <translation>设置(&amp;S)</translation>
    </message>
    <message>
        <source>Measure setting</source>
        <translation>测量设置</translation>
    </message>
    <message>
        <source>Ex&amp;port data</source>
        <translation>导出数据(&amp;P)</translation>
    </message>
    <message>
        <source>Export measurement data to csv file</source>
        <translation>将测量数据导出为 CSV 文件</translation>
    </message>
    <message>
        <source>A&amp;rrow</source>
        <translation>箭头(&amp;R)</translation>
    </message>
    <message>
        <source>Draw Arrow Annotation</source>
        <translation>绘制箭头标注</translation>
    </message>
    <message>
        <source>&amp;Text</source>
        <translation>文字(&amp;T)</translation>
    </message>
    <message>
        <source>Draw Text Annotation</source>
        <translation>绘制文字标注</translation>
    </message>
    <message>
        <source>&amp;Cross Line</source>
        <translation>十字线(&amp;C)</translation>
    </message>
    <message>
        <source>Solid crossline</source>
        <translation>实线十字线</translation>
    </message>
    <message>
        <source>Dashed C&amp;ross Line</source>
        <translation>虚线十字线(&amp;R)</translation>
    </message>
    <message>
        <source>Dashed crossline</source>
        <translation>虚线十字线</translation>
    </message>
    <message>
        <source>Video Capture &amp;Device...</source>
        <translation>视频采集设备(&amp;D)...</translation>
    </message>
    <message>
        <source>Change video capture device</source>
        <translation>更换视频采集设备</translation>
    </message>
    <message>
        <source>Video &amp;Resolution</source>
        <translation>视频分辨率(&amp;R)</translation>
    </message>
    <message>
        <source>Setting video capture properties</source>
        <translation>设置视频采集属性</translation>
    </message>
    <message>
        <source>Video &amp;Properties</source>
        <translation>视频属性(&amp;P)</translation>
    </message>
    <message>
        <source>Adjusting video capture filter properties</source>
        <translation>调节视频采集滤镜属性</translation>
    </message>
    <message>
        <source>Capture picture to an active view</source>
        <translation>将画面拍照到新窗口</translation>
    </message>
    <message>
        <source>Preview camera device</source>
        <translation>预览相机画面</translation>
    </message>
    <message>
        <source>Pause the camera video</source>
        <translation>暂停相机视频</translation>
    </message>
    <message>
        <source>Zoom display</source>
        <translation>缩放显示</translation>
    </message>
    <message>
        <source>&amp;Cascade</source>
        <translation>层叠(&amp;C)</translation>
    </message>
    <message>
        <source>Tile &amp;Horizontal</source>
        <translation>水平平铺(&amp;H)</translation>
    </message>
    <message>
        <source>Tile &amp;Vertical</source>
        <translation>垂直平铺(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>帮助(&amp;H)</translation>
    </message>
    <message>
        <source>How to use</source>
        <translation>使用说明</translation>
    </message>
    <message>
        <source>&amp;About...</source>
        <translation>关于(&amp;A)...</translation>
    </message>
    <message>
        <source>Open &amp;Picture Folder</source>
        <translation>打开图片文件夹(&amp;P)</translation>
    </message>
    <message>
        <source>Open pictures&apos; saved folder</source>
        <translation>打开已保存图片的文件夹</translation>
    </message>
    <message>
        <source>Recent File</source>
        <translation>最近的文件</translation>
    </message>
    <message>
        <source>Open this document</source>
        <translation>打开此文档</translation>
    </message>
    <message>
        <source>Display full pages</source>
        <translation>显示整页</translation>
    </message>
    <message>
        <source>Help content</source>
        <translation>帮助内容</translation>
    </message>
    <message>
        <source>Print and &amp;Help Bar</source>
        <translation>打印和帮助栏(&amp;H)</translation>
    </message>
    <message>
        <source>Show or hide the print and help bar</source>
        <translation>显示或隐藏打印和帮助栏</translation>
    </message>
    <message>
        <source>&amp;Rgb</source>
        <translation>RGB(&amp;R)</translation>
    </message>
    <message>
        <source>Rgb adjustment</source>
        <translation>RGB 调节</translation>
    </message>
    <message>
        <source>Record camera video to file</source>
        <translation>将相机视频录制到文件</translation>
    </message>
    <message>
        <source>Show the real-time processing settings</source>
        <translation>显示实时处理设置</translation>
    </message>
    <message>
        <source>&amp;Save	Ctrl+S</source>
        <translation>保存(&amp;S)	Ctrl+S</translation>
    </message>
    <message>
        <source>Save the active image</source>
        <translation>保存当前图片</translation>
    </message>
    <message>
        <source>Save &amp;As...</source>
        <translation>另存为(&amp;A)...</translation>
    </message>
    <message>
        <source>Save the active image with a new name</source>
        <translation>以新名称保存当前图片</translation>
    </message>
    <message>
        <source>Save plus measure</source>
        <translation>保存（含测量）</translation>
    </message>
    <message>
        <source>Save only image</source>
        <translation>仅保存图片</translation>
    </message>
    <message>
        <source>Save As only image</source>
        <translation>另存为（仅图片）</translation>
    </message>
    <message>
        <source>Save As plus measure</source>
        <translation>另存为（含测量）</translation>
    </message>
    <message>
        <source>Save &amp;Option</source>
        <translation>保存选项(&amp;O)</translation>
    </message>
    <message>
        <source>Setting save options</source>
        <translation>设置保存选项</translation>
    </message>
    <message>
        <source>Set resolution</source>
        <translation>设置分辨率</translation>
    </message>
    <message>
        <source>Interval capture frames</source>
        <translation>定时抓拍图片</translation>
    </message>
    <message>
        <source>&amp;Undo	Ctrl+Z</source>
        <translation>撤销(&amp;U)	Ctrl+Z</translation>
    </message>
    <message>
        <source>Undo the last action</source>
        <translation>撤销上一步操作</translation>
    </message>
    <message>
        <source>&amp;Redo	Ctrl+Y</source>
        <translation>重做(&amp;R)	Ctrl+Y</translation>
    </message>
    <message>
        <source>Redo the previously undone action</source>
        <translation>重做刚撤销的操作</translation>
    </message>
    <message>
        <source>Snap to &amp;Edges</source>
        <translation>吸附到边缘(&amp;E)</translation>
    </message>
    <message>
        <source>Put the ends of lines and the rims of circles on the nearest edge of the picture</source>
        <translation>将直线的端点和圆周放到图像上最近的边缘</translation>
    </message>
    <message>
        <source>Analyze &amp;Particles...</source>
        <translation>颗粒分析(&amp;P)...</translation>
    </message>
    <message>
        <source>Count and size the particles of the picture</source>
        <translation>统计并测量图像中的颗粒</translation>
    </message>
    <message>
        <source>Export ImageJ &amp;ROIs...</source>
        <translation>导出 ImageJ ROI(&amp;R)...</translation>
    </message>
    <message>
        <source>Save the shapes as a ROI set that ImageJ opens and measures</source>
        <translation>将图形保存为 ImageJ 可打开并测量的 ROI 集</translation>
    </message>
    <message>
        <source>&amp;Import ImageJ ROIs...</source>
        <translation>导入 ImageJ ROI(&amp;I)...</translation>
    </message>
    <message>
        <source>Add the ROIs of an ImageJ ROI set or .roi file</source>
        <translation>添加 ImageJ ROI 集或 .roi 文件中的 ROI</translation>
    </message>
    <message>
        <source>&amp;Focus Stack Pictures...</source>
        <translation>景深合成图片(&amp;F)...</translation>
    </message>
    <message>
        <source>Fuse pictures taken at different focus into one picture sharp everywhere</source>
        <translation>将不同对焦位置拍摄的图片合成为一张处处清晰的图片</translation>
    </message>
    <message>
        <source>S&amp;titch Pictures...</source>
        <translation>拼接图像(&amp;T)...</translation>
    </message>
    <message>
        <source>Stitch overlapping pictures of a scan into one</source>
        <translation>将扫描中相互重叠的图像拼接为一张</translation>
    </message>
    <message>
        <source>Hist&amp;ogram</source>
        <translation>直方图(&amp;O)</translation>
    </message>
    <message>
        <source>Show or hide the live histogram</source>
        <translation>显示或隐藏实时直方图</translation>
    </message>
    <message>
        <source>&amp;Flat-Field...</source>
        <translation>平场校正(&amp;F)...</translation>
    </message>
    <message>
        <source>Take a blank field to even out the shading</source>
        <translation>拍摄空白视场以校正亮度不均</translation>
    </message>
    <message>
        <source>&amp;White Balance</source>
        <translation>白平衡(&amp;W)</translation>
    </message>
    <message>
        <source>Make the rectangle drawn over a neutral area gray</source>
        <translation>使绘制在中性区域上的矩形变为灰色</translation>
    </message>
    <message>
        <source>Focus Pea&amp;king</source>
        <translation>峰值对焦(&amp;K)</translation>
    </message>
    <message>
        <source>Mark the edges in focus on the live picture</source>
        <translation>在实时图像上标出清晰的边缘</translation>
    </message>
    <message>
        <source>Focus Peaking &amp;Color...</source>
        <translation>峰值对焦颜色(&amp;C)...</translation>
    </message>
    <message>
        <source>Choose the color of the focus marks</source>
        <translation>选择对焦标记的颜色</translation>
    </message>
    <message>
        <source>F&amp;ocus Stack</source>
        <translation>景深合成(&amp;O)</translation>
    </message>
    <message>
        <source>Start fusing the live frames while you sweep the focus; again to finish</source>
        <translation>转动对焦时开始合成实时帧；再次选择以完成</translation>
    </message>
    <message>
        <source>&amp;Cancel Focus Stack</source>
        <translation>取消景深合成(&amp;C)</translation>
    </message>
    <message>
        <source>Stop focus stacking and keep nothing</source>
        <translation>停止景深合成，不保留任何结果</translation>
    </message>
    <message>
        <source>&amp;Mosaic</source>
        <translation>拼图(&amp;M)</translation>
    </message>
    <message>
        <source>Stitch the live picture into one as the stage moves</source>
        <translation>移动载物台时将实时图像拼接成一幅</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Use the simulated camera instead of a real one.</source>
        <translation>使用模拟相机代替真实相机。</translation>
    </message>
    <message>
        <source>Show this help.</source>
        <translation>显示此帮助。</translation>
    </message>
    <message>
        <source>Measure on a microscope camera&apos;s live picture.</source>
        <translation>在显微镜相机的实时画面上测量。</translation>
    </message>
    <message>
        <source>Picture file to open.</source>
        <translation>要打开的图片文件。</translation>
    </message>
</context>
<context>
    <name>DlgSelectFile</name>
    <message>
        <source>Open</source>
        <translation>打开</translation>
    </message>
    <message>
        <source>No preview</source>
        <translation>无预览</translation>
    </message>
    <message>
        <source>%1 x %2, %3 bits</source>
        <translation>%1 x %2，%3 位</translation>
    </message>
</context>
<context>
    <name>FCObjImage</name>
    <message>
        <source>Invalid picture size or depth</source>
        <translation>图片尺寸或位深无效</translation>
    </message>
    <message>
        <source>Not enough memory for the picture</source>
        <translation>内存不足，无法容纳图片</translation>
    </message>
    <message>
        <source>Invalid picture size</source>
        <translation>图片尺寸无效</translation>
    </message>
    <message>
        <source>Not enough memory to resize the picture</source>
        <translation>内存不足，无法调整图片大小</translation>
    </message>
    <message>
        <source>No picture</source>
        <translation>没有图片</translation>
    </message>
    <message>
        <source>The picture is too large</source>
        <translation>图片太大</translation>
    </message>
    <message>
        <source>No picture to save</source>
        <translation>没有可保存的图片</translation>
    </message>
</context>
<context>
    <name>FocusStack</name>
    <message>
        <source>The picture is empty.</source>
        <translation>图片为空。</translation>
    </message>
    <message>
        <source>The picture is %1 x %2 pixels, the first of the series %3 x %4.</source>
        <translation>该图片为 %1 x %2 像素，序列中第一张为 %3 x %4。</translation>
    </message>
    <message>
        <source>The series is full.</source>
        <translation>序列已满。</translation>
    </message>
</context>
<context>
    <name>GraticuleDetector</name>
    <message>
        <source>1 px = %1 µm ± %2</source>
        <translation>1 像素 = %1 µm ± %2</translation>
    </message>
    <message numerus="yes">
        <source>%n ticks, scale at %1°</source>
        <translation>
            <numerusform>
            </numerusform>
        </translation>
    </message>
</context>
<context>
    <name>LiveFocusStack</name>
    <message>
        <source>frame 1</source>
        <translation>第 1 帧</translation>
    </message>
    <message>
        <source>frame %1</source>
        <translation>第 %1 帧</translation>
    </message>
</context>
<context>
    <name>Menu</name>
    <message>
        <source>&amp;File</source>
        <translation>文件(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>视图(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Measure</source>
        <translation>测量(&amp;M)</translation>
    </message>
    <message>
        <source>&amp;Process</source>
        <translation>处理(&amp;P)</translation>
    </message>
    <message>
        <source>V&amp;ideo</source>
        <translation>视频(&amp;I)</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>窗口(&amp;W)</translation>
    </message>
    <message>
        <source>&amp;Language</source>
        <translation>语言(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>帮助(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>编辑(&amp;E)</translation>
    </message>
</context>
<context>
    <name>Stitcher</name>
    <message>
        <source>it overlaps none of the pictures placed before it</source>
        <translation>它与之前放置的任何图像都不重叠</translation>
    </message>
    <message>
        <source>the picture is empty or too small</source>
        <translation>图像为空或太小</translation>
    </message>
    <message>
        <source>the pictures it overlaps disagree about where it lies</source>
        <translation>与其重叠的图像对其位置判断不一致</translation>
    </message>
</context>
<context>
    <name>SvrFile</name>
    <message>
        <source>Cannot open %1.
%2</source>
        <translation>无法打开 %1。
%2</translation>
    </message>
    <message>
        <source>Cannot read %1.
%2</source>
        <translation>无法读取 %1。
%2</translation>
    </message>
    <message>
        <source>Cannot write %1.
%2</source>
        <translation>无法写入 %1。
%2</translation>
    </message>
</context>
<context>
    <name>ToolBar</name>
    <message>
        <source>Standard</source>
        <translation>标准</translation>
    </message>
    <message>
        <source>Measure</source>
        <translation>测量</translation>
    </message>
    <message>
        <source>Process</source>
        <translation>处理</translation>
    </message>
    <message>
        <source>Print and Help</source>
        <translation>打印和帮助</translation>
    </message>
</context>
</TS>
