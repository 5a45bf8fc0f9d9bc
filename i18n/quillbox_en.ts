<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="zh_CN">
<context>
    <name>AboutDialog</name>
    <message>
        <source>关于 Quillbox</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>视频下载管理器</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ConfirmDialog</name>
    <message>
        <source>确定</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>取消</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CookieFileDialog</name>
    <message>
        <source>选择 Cookie 文件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cookie 文件 (*.txt)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>所有文件 (*)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CookieManagerView</name>
    <message>
        <source>Cookie 管理</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>需要登录的视频（会员、年龄限制、“确认你不是机器人”）要用已登录浏览器的 Cookie 下载。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载使用的 Cookie</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>不使用</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>从浏览器读取</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>使用 Cookie 文件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Netscape 格式的 cookies.txt</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>浏览...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>输入面板的“Cookie”开关已关闭：下载暂不使用 Cookie。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>正在检查...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>检查 Cookie</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>登录网站</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>让 yt-dlp 读取所选的 Cookie，不下载、不联网，看看它读到了什么。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>导出 Chrome Cookie</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>把 Chrome（或 Chromium）保存的 Cookie 导出为 Cookie 文件，只有你自己能读取。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>正在导出...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>用于下载</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>如何获取 Cookie</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>当前 Cookie 文件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>未选择 Cookie 文件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>重新读取</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n 个网站的 Cookie 已过期，请重新登录后再导出。</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>已过期</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DownloadInputView</name>
    <message>
        <source>错误</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>已加入 %n 个下载</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>这个视频链接还带有一个播放列表。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>这 %1 个视频链接还带有播放列表。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>只下载这个视频</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载整个列表</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>这个链接已在队列中，要再加入一次吗？</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>这 %1 个链接都已在队列中，要再加入一次吗？</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>再次加入</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>添加下载任务</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>剪贴板中有 %n 个新链接</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>添加 %n 个链接</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>忽略</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>自定义参数</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>输入 yt-dlp 的自定义参数，使用空格分隔</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>播放列表</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>查看可用格式</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>视频信息</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>开始下载</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>取消</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DownloadOptionsBody</name>
    <message>
        <source>兼容性</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>不限</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>到处都能播放</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>画质最佳</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>体积最小</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>优先 H.264 视频和 AAC 音频，合并为 MP4：QuickTime、剪辑软件和手机都能打开；没有时下载现有的格式</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>优先分辨率、帧率和码率最高的格式</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>优先文件最小的格式</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>字幕</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>不要</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载字幕文件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>嵌入视频</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>字幕格式</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>原格式</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>字幕语言</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>中文</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>简体</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>繁体</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>英语</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>日语</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>韩语</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>全部</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>包括自动生成的字幕</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>嵌入</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>封面</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>元数据</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>章节</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>不用</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>标记为章节</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>移除片段</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>赞助</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>片头</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>片尾</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>自我推广</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>预告</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>题外话</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>互动提醒</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>非音乐部分</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>限速</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>限速单位</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>代理</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>不用代理，例如 socks5://127.0.0.1:1080</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 代理，链接信息、格式列表和下载都经过它</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>文件名</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>文件名模板</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>标题</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>上传者</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>日期</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>分辨率</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>列表序号</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>扩展名</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>示例：%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>预览：%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载存档</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>跳过已经下载过的视频</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>记录在 %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>全部清除</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DownloadOptionsPanel</name>
    <message>
        <source>下载选项：%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载选项</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DownloadQueueView</name>
    <message>
        <source>下载队列</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>清除已完成</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>全部停止</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>查找：标题、链接或状态</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>暂无下载任务</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>在上方输入视频链接开始下载</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>没有找到匹配的任务</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DownloadTaskRow</name>
    <message>
        <source>停止</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>继续</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>重试</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>打开文件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>在文件夹中显示</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>视频信息</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>复制链接</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>移除</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%2，%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>修复</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>隐藏原始输出</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>显示原始输出</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>已复制</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>复制错误信息</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>已复制链接</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ExecutableDialog</name>
    <message>
        <source>选择 yt-dlp 可执行文件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>所有文件 (*)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FilePickerView</name>
    <message>
        <source>选择 yt-dlp 可执行文件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>📁 手动选择...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>取消</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FolderPicker</name>
    <message>
        <source>选择输出目录</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>选择</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FormatPickerPane</name>
    <message>
        <source>格式</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>分辨率</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>帧率</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>编码</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>大小</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>说明</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>选择格式</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>选择一个视频格式和一个音频格式，或一个音视频合一的格式</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>正在读取格式...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>使用所选格式</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>替换</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FormatsListSheet</name>
    <message>
        <source>可用格式列表</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>已复制</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>复制</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>InstallationAlert</name>
    <message>
        <source>未安装 yt-dlp</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>yt-dlp 是一个开源视频下载工具。请通过以下方式安装：

• Homebrew: brew install yt-dlp
• pip: pip install yt-dlp</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>稍后</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>安装最新 yt-dlp</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>打开安装说明</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LinksEditor</name>
    <message>
        <source>视频链接</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>粘贴</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>清空</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>请输入视频链接，每行一个...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>支持多个链接，每行一个</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LinksFileDialog</name>
    <message>
        <source>从文件导入链接</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>文本文件 (*.txt *.list *.csv *.md)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>所有文件 (*)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LogPanelView</name>
    <message>
        <source>下载日志</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n 条</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>自动滚动</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>最新</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Quillbox - 视频下载管理器</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MainView</name>
    <message>
        <source>错误</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MenuActions</name>
    <message>
        <source>文件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>编辑</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>窗口</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>关于 Quillbox</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>偏好设置...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>隐藏 Quillbox</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>隐藏其他</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>显示全部</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>退出 Quillbox</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>新建下载任务</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>从文件导入链接…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>关闭窗口</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>撤销</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>重做</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>剪切</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>复制</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>粘贴</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>全选</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>最小化</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>缩放</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>全部置于顶层</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MessageAlert</name>
    <message>
        <source>好</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>OutputFolderField</name>
    <message>
        <source>输出目录</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>选择输出目录...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>选择输出目录</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PlaylistGroupHeader</name>
    <message>
        <source>展开</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>折叠</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n 项</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>%1 已完成</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 未完成</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>全部停止</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>全部重试</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PlaylistSheet</name>
    <message>
        <source>筛选标题</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>序号，如 1-20, 25</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>按序号选择</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>全选</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>全不选</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>反选</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>已选 %1 / %2 项</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>之后还有 %n 个链接待检查</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>取消</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载所选 (%1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载所选</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PresetGrid</name>
    <message>
        <source>下载预设</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PresetsView</name>
    <message>
        <source>删除预设“%1”？删除后无法恢复。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>参数预设</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>把常用的 yt-dlp 参数存为自己的预设。选用后，下载页切换到“自定义”并填入这些参数。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>我的预设</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>还没有自己的预设，在下面新建一个。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>正在读取...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载选项：%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>选用</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>编辑</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>删除</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>名称</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>参数</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>保存</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>取消</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>新建预设</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>例如：1080p 带字幕</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>同时保存当前的下载选项：%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>添加预设</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>内置预设</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>内置预设不能修改，在下载页直接选用。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>参数：下载页“自定义参数”中填写的内容</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>参数：无，由 yt-dlp 自行选择</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QuitDialog</name>
    <message numerus="yes">
        <source>有 %n 个下载正在进行，退出将停止它们。</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>取消</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>退出</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SettingsView</name>
    <message>
        <source>重新检测</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>设置</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>yt-dlp 配置</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>yt-dlp 状态</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>已安装 (v%1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>未找到</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>取消</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>可执行文件路径</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>输入 yt-dlp 路径</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>浏览...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>自动检测路径: %1（使用中，自选路径）</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>自动检测路径: %1（使用中，自动找到）</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>使用此路径</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>重置为自动检测</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>⚠️ 如果下载 YouTube 时只看到图片格式（storyboard），通常是 yt-dlp 版本过旧，需要更新。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>更新中...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>更新 yt-dlp 到最新版</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>安装最新 yt-dlp</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>自动更新 yt-dlp</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>每天检查一次新版本；由 Quillbox 安装的 yt-dlp 会在没有下载进行时自动更新。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JS 运行时（YouTube EJS）</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 已就绪</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>未检测到 JS 运行时</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>YouTube 下载需要 JS 运行时来解决 n-challenge（EJS）。支持 Deno（推荐）、Node.js（≥20）、Bun。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>安装 Deno（推荐）</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>安装 Node.js</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>通过 Homebrew 安装：brew install deno  或  brew install node</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FFmpeg（音频转码）</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FFmpeg 已就绪</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>未检测到 FFmpeg</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载音频（最佳音质、仅音频）时，yt-dlp 需要 FFmpeg 进行音频提取和转码。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载 FFmpeg</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>推荐通过 Homebrew 安装：</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载设置</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>默认输出目录</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>选择下载目录</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>同时下载数</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>完成时通知</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>启动时继续未完成的下载</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>界面</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>界面渲染</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>自动</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>硬件加速</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>软件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>正在使用：%1（%2）</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>未知</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下次启动 Quillbox 时生效</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>从别处添加链接</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>监视剪贴板</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>复制的文字里有新链接时，下载页上方会提示添加；不会自动开始下载。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>复制的文字里有新链接时，下载页上方会提示添加。在 Wayland 下只能看到 Quillbox 在前台时复制的内容。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>复制下面的书签，在浏览器中新建一个书签并把它粘贴为网址；在视频页面点这个书签，页面链接就会加入 Quillbox 的链接框。</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>已复制</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>复制书签</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SidebarView</name>
    <message>
        <source>视频下载管理器</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>总任务</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>完成</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载管理</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>参数预设</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cookie 管理</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>下载日志</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>设置</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>VideoInfoView</name>
    <message>
        <source>时长</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>作者</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>播放量</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>点赞数</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>关闭</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
