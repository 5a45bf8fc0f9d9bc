<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="zh_CN">
<context>
    <name>AboutDialog</name>
    <message>
        <source>关于 Quillbox</source>
        <translation>About Quillbox</translation>
    </message>
    <message>
        <source>视频下载管理器</source>
        <translation>Video download manager</translation>
    </message>
</context>
<context>
    <name>ConfirmDialog</name>
    <message>
        <source>确定</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>CookieFileDialog</name>
    <message>
        <source>选择 Cookie 文件</source>
        <translation>Choose a cookie file</translation>
    </message>
    <message>
        <source>Cookie 文件 (*.txt)</source>
        <translation>Cookie files (*.txt)</translation>
    </message>
    <message>
        <source>所有文件 (*)</source>
        <translation>All files (*)</translation>
    </message>
</context>
<context>
    <name>CookieManagerView</name>
    <message>
        <source>Cookie 管理</source>
        <translation>Cookies</translation>
    </message>
    <message>
        <source>需要登录的视频（会员、年龄限制、“确认你不是机器人”）要用已登录浏览器的 Cookie 下载。</source>
        <translation>Videos that require signing in (members only, age-restricted, “confirm you’re not a bot”) must be downloaded with the cookies of a browser where you are signed in.</translation>
    </message>
    <message>
        <source>下载使用的 Cookie</source>
        <translation>Cookies for downloads</translation>
    </message>
    <message>
        <source>不使用</source>
        <translation>None</translation>
    </message>
    <message>
        <source>从浏览器读取</source>
        <translation>Read from browser</translation>
    </message>
    <message>
        <source>使用 Cookie 文件</source>
        <translation>Use cookie file</translation>
    </message>
    <message>
        <source>Netscape 格式的 cookies.txt</source>
        <translation>cookies.txt in Netscape format</translation>
    </message>
    <message>
        <source>浏览...</source>
        <translation>Browse...</translation>
    </message>
    <message>
        <source>输入面板的“Cookie”开关已关闭：下载暂不使用 Cookie。</source>
        <translation>The “Cookie” switch on the input panel is off: downloads use no cookies for now.</translation>
    </message>
    <message>
        <source>正在检查...</source>
        <translation>Checking...</translation>
    </message>
    <message>
        <source>检查 Cookie</source>
        <translation>Check cookies</translation>
    </message>
    <message>
        <source>登录网站</source>
        <translation>Sign-in site</translation>
    </message>
    <message>
        <source>让 yt-dlp 读取所选的 Cookie，不下载、不联网，看看它读到了什么。</source>
        <translation>Lets yt-dlp read the chosen cookies, without downloading or going online, to see what it finds.</translation>
    </message>
    <message>
        <source>导出 Chrome Cookie</source>
        <translation>Export Chrome cookies</translation>
    </message>
    <message>
        <source>把 Chrome（或 Chromium）保存的 Cookie 导出为 Cookie 文件，只有你自己能读取。</source>
        <translation>Exports the cookies saved by Chrome (or Chromium) to a cookie file that only you can read.</translation>
    </message>
    <message>
        <source>正在导出...</source>
        <translation>Exporting...</translation>
    </message>
    <message>
        <source>用于下载</source>
        <translation>Use for downloads</translation>
    </message>
    <message>
        <source>如何获取 Cookie</source>
        <translation>How to get cookies</translation>
    </message>
    <message>
        <source>当前 Cookie 文件</source>
        <translation>Current cookie file</translation>
    </message>
    <message>
        <source>未选择 Cookie 文件</source>
        <translation>No cookie file chosen</translation>
    </message>
    <message>
        <source>重新读取</source>
        <translation>Reload</translation>
    </message>
    <message numerus="yes">
        <source>%n 个网站的 Cookie 已过期，请重新登录后再导出。</source>
        <translation>
            <numerusform>The cookies for %n site have expired. Sign in again before you export them.</numerusform>
            <numerusform>The cookies for %n sites have expired. Sign in again before you export them.</numerusform>
        </translation>
    </message>
    <message>
        <source>已过期</source>
        <translation>Expired</translation>
    </message>
</context>
<context>
    <name>DownloadInputView</name>
    <message>
        <source>错误</source>
        <translation>Error</translation>
    </message>
    <message numerus="yes">
        <source>已加入 %n 个下载</source>
        <translation>
            <numerusform>Added %n download</numerusform>
            <numerusform>Added %n downloads</numerusform>
        </translation>
    </message>
    <message>
        <source>这个视频链接还带有一个播放列表。</source>
        <translation>This video link also includes a playlist.</translation>
    </message>
    <message>
        <source>这 %1 个视频链接还带有播放列表。</source>
        <translation>These %1 video links also include playlists.</translation>
    </message>
    <message>
        <source>只下载这个视频</source>
        <translation>Download only the video</translation>
    </message>
    <message>
        <source>下载整个列表</source>
        <translation>Download whole playlist</translation>
    </message>
    <message>
        <source>这个链接已在队列中，要再加入一次吗？</source>
        <translation>This link is already in the queue. Add it again?</translation>
    </message>
    <message>
        <source>这 %1 个链接都已在队列中，要再加入一次吗？</source>
        <translation>These %1 links are all already in the queue. Add them again?</translation>
    </message>
    <message>
        <source>再次加入</source>
        <translation>Add again</translation>
    </message>
    <message>
        <source>添加下载任务</source>
        <translation>Add downloads</translation>
    </message>
    <message numerus="yes">
        <source>剪贴板中有 %n 个新链接</source>
        <translation>
            <numerusform>%n new link on the clipboard</numerusform>
            <numerusform>%n new links on the clipboard</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>添加 %n 个链接</source>
        <translation>
            <numerusform>Add %n link</numerusform>
            <numerusform>Add %n links</numerusform>
        </translation>
    </message>
    <message>
        <source>忽略</source>
        <translation>Ignore</translation>
    </message>
    <message>
        <source>自定义参数</source>
        <translation>Custom arguments</translation>
    </message>
    <message>
        <source>输入 yt-dlp 的自定义参数，使用空格分隔</source>
        <translation>Enter custom yt-dlp arguments, separated by spaces</translation>
    </message>
    <message>
        <source>播放列表</source>
        <translation>Playlist</translation>
    </message>
    <message>
        <source>查看可用格式</source>
        <translation>List formats</translation>
    </message>
    <message>
        <source>视频信息</source>
        <translation>Video info</translation>
    </message>
    <message>
        <source>开始下载</source>
        <translation>Start download</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>DownloadOptionsBody</name>
    <message>
        <source>兼容性</source>
        <translation>Compatibility</translation>
    </message>
    <message>
        <source>不限</source>
        <translation>No limit</translation>
    </message>
    <message>
        <source>到处都能播放</source>
        <translation>Plays everywhere</translation>
    </message>
    <message>
        <source>画质最佳</source>
        <translation>Best quality</translation>
    </message>
    <message>
        <source>体积最小</source>
        <translation>Smallest size</translation>
    </message>
    <message>
        <source>优先 H.264 视频和 AAC 音频，合并为 MP4：QuickTime、剪辑软件和手机都能打开；没有时下载现有的格式</source>
        <translation>Prefers H.264 video and AAC audio, merged into MP4: QuickTime, video editors and phones can all open it; when there are none, downloads the formats available</translation>
    </message>
    <message>
        <source>优先分辨率、帧率和码率最高的格式</source>
        <translation>Prefers the formats with the highest resolution, frame rate and bitrate</translation>
    </message>
    <message>
        <source>优先文件最小的格式</source>
        <translation>Prefers the formats with the smallest files</translation>
    </message>
    <message>
        <source>字幕</source>
        <translation>Subtitles</translation>
    </message>
    <message>
        <source>不要</source>
        <translation>None</translation>
    </message>
    <message>
        <source>下载字幕文件</source>
        <translation>Download subtitle files</translation>
    </message>
    <message>
        <source>嵌入视频</source>
        <translation>Embed in video</translation>
    </message>
    <message>
        <source>字幕格式</source>
        <translation>Subtitle format</translation>
    </message>
    <message>
        <source>原格式</source>
        <translation>Original</translation>
    </message>
    <message>
        <source>字幕语言</source>
        <translation>Subtitle languages</translation>
    </message>
    <message>
        <source>中文</source>
        <translation>Chinese</translation>
    </message>
    <message>
        <source>简体</source>
        <translation>Simplified</translation>
    </message>
    <message>
        <source>繁体</source>
        <translation>Traditional</translation>
    </message>
    <message>
        <source>英语</source>
        <translation>English</translation>
    </message>
    <message>
        <source>日语</source>
        <translation>Japanese</translation>
    </message>
    <message>
        <source>韩语</source>
        <translation>Korean</translation>
    </message>
    <message>
        <source>全部</source>
        <translation>All</translation>
    </message>
    <message>
        <source>包括自动生成的字幕</source>
        <translation>Include auto-generated subtitles</translation>
    </message>
    <message>
        <source>嵌入</source>
        <translation>Embed</translation>
    </message>
    <message>
        <source>封面</source>
        <translation>Thumbnail</translation>
    </message>
    <message>
        <source>元数据</source>
        <translation>Metadata</translation>
    </message>
    <message>
        <source>章节</source>
        <translation>Chapters</translation>
    </message>
    <message>
        <source>不用</source>
        <translation>Off</translation>
    </message>
    <message>
        <source>标记为章节</source>
        <translation>Mark as chapters</translation>
    </message>
    <message>
        <source>移除片段</source>
        <translation>Remove segments</translation>
    </message>
    <message>
        <source>赞助</source>
        <translation>Sponsor</translation>
    </message>
    <message>
        <source>片头</source>
        <translation>Intro</translation>
    </message>
    <message>
        <source>片尾</source>
        <translation>Outro</translation>
    </message>
    <message>
        <source>自我推广</source>
        <translation>Self-promotion</translation>
    </message>
    <message>
        <source>预告</source>
        <translation>Preview</translation>
    </message>
    <message>
        <source>题外话</source>
        <translation>Filler</translation>
    </message>
    <message>
        <source>互动提醒</source>
        <translation>Interaction reminder</translation>
    </message>
    <message>
        <source>非音乐部分</source>
        <translation>Non-music section</translation>
    </message>
    <message>
        <source>限速</source>
        <translation>Rate limit</translation>
    </message>
    <message>
        <source>限速单位</source>
        <translation>Rate limit unit</translation>
    </message>
    <message>
        <source>代理</source>
        <translation>Proxy</translation>
    </message>
    <message>
        <source>不用代理，例如 socks5://127.0.0.1:1080</source>
        <translation>No proxy, e.g. socks5://127.0.0.1:1080</translation>
    </message>
    <message>
        <source>%1 代理，链接信息、格式列表和下载都经过它</source>
        <translation>%1 proxy: link information, format lists and downloads all go through it</translation>
    </message>
    <message>
        <source>文件名</source>
        <translation>Filename</translation>
    </message>
    <message>
        <source>文件名模板</source>
        <translation>Filename template</translation>
    </message>
    <message>
        <source>标题</source>
        <translation>Title</translation>
    </message>
    <message>
        <source>上传者</source>
        <translation>Uploader</translation>
    </message>
    <message>
        <source>日期</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>分辨率</source>
        <translation>Resolution</translation>
    </message>
    <message>
        <source>列表序号</source>
        <translation>Playlist index</translation>
    </message>
    <message>
        <source>扩展名</source>
        <translation>Extension</translation>
    </message>
    <message>
        <source>示例：%1</source>
        <translation>Example: %1</translation>
    </message>
    <message>
        <source>预览：%1</source>
        <translation>Preview: %1</translation>
    </message>
    <message>
        <source>下载存档</source>
        <translation>Download archive</translation>
    </message>
    <message>
        <source>跳过已经下载过的视频</source>
        <translation>Skip videos already downloaded</translation>
    </message>
    <message>
        <source>记录在 %1</source>
        <translation>Recorded in %1</translation>
    </message>
    <message>
        <source>全部清除</source>
        <translation>Clear all</translation>
    </message>
</context>
<context>
    <name>DownloadOptionsPanel</name>
    <message>
        <source>下载选项：%1</source>
        <translation>Download options: %1</translation>
    </message>
    <message>
        <source>下载选项</source>
        <translation>Download options</translation>
    </message>
</context>
<context>
    <name>DownloadQueueView</name>
    <message>
        <source>下载队列</source>
        <translation>Download queue</translation>
    </message>
    <message>
        <source>清除已完成</source>
        <translation>Clear completed</translation>
    </message>
    <message>
        <source>全部停止</source>
        <translation>Stop all</translation>
    </message>
    <message>
        <source>查找：标题、链接或状态</source>
        <translation>Find: title, link or status</translation>
    </message>
    <message>
        <source>暂无下载任务</source>
        <translation>No downloads yet</translation>
    </message>
    <message>
        <source>在上方输入视频链接开始下载</source>
        <translation>Enter video links above to start downloading</translation>
    </message>
    <message>
        <source>没有找到匹配的任务</source>
        <translation>No matching downloads</translation>
    </message>
</context>
<context>
    <name>DownloadTaskRow</name>
    <message>
        <source>停止</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>继续</source>
        <translation>Resume</translation>
    </message>
    <message>
        <source>重试</source>
        <translation>Retry</translation>
    </message>
    <message>
        <source>打开文件</source>
        <translation>Open file</translation>
    </message>
    <message>
        <source>在文件夹中显示</source>
        <translation>Show in folder</translation>
    </message>
    <message>
        <source>视频信息</source>
        <translation>Video info</translation>
    </message>
    <message>
        <source>复制链接</source>
        <translation>Copy link</translation>
    </message>
    <message>
        <source>移除</source>
        <translation>Remove</translation>
    </message>
    <message>
        <source>%2，%1</source>
        <translation>%2, %1</translation>
    </message>
    <message>
        <source>修复</source>
        <translation>Fix</translation>
    </message>
    <message>
        <source>隐藏原始输出</source>
        <translation>Hide raw output</translation>
    </message>
    <message>
        <source>显示原始输出</source>
        <translation>Show raw output</translation>
    </message>
    <message>
        <source>已复制</source>
        <translation>Copied</translation>
    </message>
    <message>
        <source>复制错误信息</source>
        <translation>Copy error message</translation>
    </message>
    <message>
        <source>已复制链接</source>
        <translation>Link copied</translation>
    </message>
</context>
<context>
    <name>ExecutableDialog</name>
    <message>
        <source>选择 yt-dlp 可执行文件</source>
        <translation>Choose the yt-dlp executable</translation>
    </message>
    <message>
        <source>所有文件 (*)</source>
        <translation>All files (*)</translation>
    </message>
</context>
<context>
    <name>FilePickerView</name>
    <message>
        <source>选择 yt-dlp 可执行文件</source>
        <translation>Choose the yt-dlp executable</translation>
    </message>
    <message>
        <source>📁 手动选择...</source>
        <translation>📁 Choose manually...</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>FolderPicker</name>
    <message>
        <source>选择输出目录</source>
        <translation>Choose output folder</translation>
    </message>
    <message>
        <source>选择</source>
        <translation>Choose</translation>
    </message>
</context>
<context>
    <name>FormatPickerPane</name>
    <message>
        <source>格式</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>分辨率</source>
        <translation>Resolution</translation>
    </message>
    <message>
        <source>帧率</source>
        <translation>FPS</translation>
    </message>
    <message>
        <source>编码</source>
        <translation>Codecs</translation>
    </message>
    <message>
        <source>大小</source>
        <translation>Size</translation>
    </message>
    <message>
        <source>说明</source>
        <translation>Note</translation>
    </message>
    <message>
        <source>选择格式</source>
        <translation>Choose formats</translation>
    </message>
    <message>
        <source>选择一个视频格式和一个音频格式，或一个音视频合一的格式</source>
        <translation>Choose one video format and one audio format, or one format with both video and audio</translation>
    </message>
    <message>
        <source>正在读取格式...</source>
        <translation>Reading formats...</translation>
    </message>
    <message>
        <source>使用所选格式</source>
        <translation>Use selected formats</translation>
    </message>
    <message>
        <source>替换</source>
        <translation>Replace</translation>
    </message>
</context>
<context>
    <name>FormatsListSheet</name>
    <message>
        <source>可用格式列表</source>
        <translation>Available formats</translation>
    </message>
    <message>
        <source>已复制</source>
        <translation>Copied</translation>
    </message>
    <message>
        <source>复制</source>
        <translation>Copy</translation>
    </message>
</context>
<context>
    <name>InstallationAlert</name>
    <message>
        <source>未安装 yt-dlp</source>
        <translation>yt-dlp is not installed</translation>
    </message>
    <message>
        <source>yt-dlp 是一个开源视频下载工具。请通过以下方式安装：

• Homebrew: brew install yt-dlp
• pip: pip install yt-dlp</source>
        <translation>yt-dlp is an open-source video download tool. Install it in one of these ways:

• Homebrew: brew install yt-dlp
• pip: pip install yt-dlp</translation>
    </message>
    <message>
        <source>稍后</source>
        <translation>Later</translation>
    </message>
    <message>
        <source>安装最新 yt-dlp</source>
        <translation>Install latest yt-dlp</translation>
    </message>
    <message>
        <source>打开安装说明</source>
        <translation>Open install instructions</translation>
    </message>
</context>
<context>
    <name>LinksEditor</name>
    <message>
        <source>视频链接</source>
        <translation>Video links</translation>
    </message>
    <message>
        <source>粘贴</source>
        <translation>Paste</translation>
    </message>
    <message>
        <source>清空</source>
        <translation>Clear</translation>
    </message>
    <message>
        <source>请输入视频链接，每行一个...</source>
        <translation>Enter video links, one per line...</translation>
    </message>
    <message>
        <source>支持多个链接，每行一个</source>
        <translation>Several links can be entered, one per line</translation>
    </message>
</context>
<context>
    <name>LinksFileDialog</name>
    <message>
        <source>从文件导入链接</source>
        <translation>Import links from file</translation>
    </message>
    <message>
        <source>文本文件 (*.txt *.list *.csv *.md)</source>
        <translation>Text files (*.txt *.list *.csv *.md)</translation>
    </message>
    <message>
        <source>所有文件 (*)</source>
        <translation>All files (*)</translation>
    </message>
</context>
<context>
    <name>LogPanelView</name>
    <message>
        <source>下载日志</source>
        <translation>Download log</translation>
    </message>
    <message numerus="yes">
        <source>%n 条</source>
        <translation>
            <numerusform>%n entry</numerusform>
            <numerusform>%n entries</numerusform>
        </translation>
    </message>
    <message>
        <source>自动滚动</source>
        <translation>Auto-scroll</translation>
    </message>
    <message>
        <source>最新</source>
        <translation>Latest</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Quillbox - 视频下载管理器</source>
        <translation>Quillbox - Video download manager</translation>
    </message>
</context>
<context>
    <name>MainView</name>
    <message>
        <source>错误</source>
        <translation>Error</translation>
    </message>
</context>
<context>
    <name>MenuActions</name>
    <message>
        <source>文件</source>
        <translation>File</translation>
    </message>
    <message>
        <source>编辑</source>
        <translation>Edit</translation>
    </message>
    <message>
        <source>窗口</source>
        <translation>Window</translation>
    </message>
    <message>
        <source>关于 Quillbox</source>
        <translation>About Quillbox</translation>
    </message>
    <message>
        <source>偏好设置...</source>
        <translation>Preferences...</translation>
    </message>
    <message>
        <source>隐藏 Quillbox</source>
        <translation>Hide Quillbox</translation>
    </message>
    <message>
        <source>隐藏其他</source>
        <translation>Hide others</translation>
    </message>
    <message>
        <source>显示全部</source>
        <translation>Show all</translation>
    </message>
    <message>
        <source>退出 Quillbox</source>
        <translation>Quit Quillbox</translation>
    </message>
    <message>
        <source>新建下载任务</source>
        <translation>New download</translation>
    </message>
    <message>
        <source>从文件导入链接…</source>
        <translation>Import links from file…</translation>
    </message>
    <message>
        <source>关闭窗口</source>
        <translation>Close window</translation>
    </message>
    <message>
        <source>撤销</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>重做</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>剪切</source>
        <translation>Cut</translation>
    </message>
    <message>
        <source>复制</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>粘贴</source>
        <translation>Paste</translation>
    </message>
    <message>
        <source>全选</source>
        <translation>Select all</translation>
    </message>
    <message>
        <source>最小化</source>
        <translation>Minimize</translation>
    </message>
    <message>
        <source>缩放</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>全部置于顶层</source>
        <translation>Bring all to front</translation>
    </message>
</context>
<context>
    <name>MessageAlert</name>
    <message>
        <source>好</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>OutputFolderField</name>
    <message>
        <source>输出目录</source>
        <translation>Output folder</translation>
    </message>
    <message>
        <source>选择输出目录...</source>
        <translation>Choose output folder...</translation>
    </message>
    <message>
        <source>选择输出目录</source>
        <translation>Choose output folder</translation>
    </message>
</context>
<context>
    <name>PlaylistGroupHeader</name>
    <message>
        <source>展开</source>
        <translation>Expand</translation>
    </message>
    <message>
        <source>折叠</source>
        <translation>Collapse</translation>
    </message>
    <message numerus="yes">
        <source>%n 项</source>
        <translation>
            <numerusform>%n item</numerusform>
            <numerusform>%n items</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 已完成</source>
        <translation>%1 completed</translation>
    </message>
    <message>
        <source>%1 未完成</source>
        <translation>%1 unfinished</translation>
    </message>
    <message>
        <source>全部停止</source>
        <translation>Stop all</translation>
    </message>
    <message>
        <source>全部重试</source>
        <translation>Retry all</translation>
    </message>
</context>
<context>
    <name>PlaylistSheet</name>
    <message>
        <source>筛选标题</source>
        <translation>Filter titles</translation>
    </message>
    <message>
        <source>序号，如 1-20, 25</source>
        <translation>Numbers, e.g. 1-20, 25</translation>
    </message>
    <message>
        <source>按序号选择</source>
        <translation>Select by number</translation>
    </message>
    <message>
        <source>全选</source>
        <translation>Select all</translation>
    </message>
    <message>
        <source>全不选</source>
        <translation>Select none</translation>
    </message>
    <message>
        <source>反选</source>
        <translation>Invert selection</translation>
    </message>
    <message>
        <source>已选 %1 / %2 项</source>
        <translation>%1 / %2 selected</translation>
    </message>
    <message numerus="yes">
        <source>之后还有 %n 个链接待检查</source>
        <translation>
            <numerusform>%n more link to check after this</numerusform>
            <numerusform>%n more links to check after this</numerusform>
        </translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>下载所选 (%1)</source>
        <translation>Download selected (%1)</translation>
    </message>
    <message>
        <source>下载所选</source>
        <translation>Download selected</translation>
    </message>
</context>
<context>
    <name>PresetGrid</name>
    <message>
        <source>下载预设</source>
        <translation>Preset</translation>
    </message>
</context>
<context>
    <name>PresetsView</name>
    <message>
        <source>删除预设“%1”？删除后无法恢复。</source>
        <translation>Delete the preset “%1”? This cannot be undone.</translation>
    </message>
    <message>
        <source>参数预设</source>
        <translation>Presets</translation>
    </message>
    <message>
        <source>把常用的 yt-dlp 参数存为自己的预设。选用后，下载页切换到“自定义”并填入这些参数。</source>
        <translation>Save the yt-dlp arguments you use often as presets of your own. When you use one, the download page switches to “Custom” and fills in its arguments.</translation>
    </message>
    <message>
        <source>我的预设</source>
        <translation>My presets</translation>
    </message>
    <message>
        <source>还没有自己的预设，在下面新建一个。</source>
        <translation>No presets of your own yet. Create one below.</translation>
    </message>
    <message>
        <source>正在读取...</source>
        <translation>Loading...</translation>
    </message>
    <message>
        <source>下载选项：%1</source>
        <translation>Download options: %1</translation>
    </message>
    <message>
        <source>选用</source>
        <translation>Use</translation>
    </message>
    <message>
        <source>编辑</source>
        <translation>Edit</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>名称</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>参数</source>
        <translation>Arguments</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>新建预设</source>
        <translation>New preset</translation>
    </message>
    <message>
        <source>例如：1080p 带字幕</source>
        <translation>e.g. 1080p with subtitles</translation>
    </message>
    <message>
        <source>同时保存当前的下载选项：%1</source>
        <translation>Also saves the current download options: %1</translation>
    </message>
    <message>
        <source>添加预设</source>
        <translation>Add preset</translation>
    </message>
    <message>
        <source>内置预设</source>
        <translation>Built-in presets</translation>
    </message>
    <message>
        <source>内置预设不能修改，在下载页直接选用。</source>
        <translation>Built-in presets cannot be changed; choose them directly on the download page.</translation>
    </message>
    <message>
        <source>参数：下载页“自定义参数”中填写的内容</source>
        <translation>Arguments: whatever is entered in “Custom arguments” on the download page</translation>
    </message>
    <message>
        <source>参数：无，由 yt-dlp 自行选择</source>
        <translation>Arguments: none, yt-dlp chooses for itself</translation>
    </message>
</context>
<context>
    <name>QuitDialog</name>
    <message numerus="yes">
        <source>有 %n 个下载正在进行，退出将停止它们。</source>
        <translation>
            <numerusform>%n download is in progress. Quitting will stop it.</numerusform>
            <numerusform>%n downloads are in progress. Quitting will stop them.</numerusform>
        </translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>退出</source>
        <translation>Quit</translation>
    </message>
</context>
<context>
    <name>SettingsView</name>
    <message>
        <source>重新检测</source>
        <translation>Detect again</translation>
    </message>
    <message>
        <source>设置</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>yt-dlp 配置</source>
        <translation>yt-dlp setup</translation>
    </message>
    <message>
        <source>yt-dlp 状态</source>
        <translation>yt-dlp status</translation>
    </message>
    <message>
        <source>已安装 (v%1)</source>
        <translation>Installed (v%1)</translation>
    </message>
    <message>
        <source>未找到</source>
        <translation>Not found</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>可执行文件路径</source>
        <translation>Executable path</translation>
    </message>
    <message>
        <source>输入 yt-dlp 路径</source>
        <translation>Enter the yt-dlp path</translation>
    </message>
    <message>
        <source>浏览...</source>
        <translation>Browse...</translation>
    </message>
    <message>
        <source>自动检测路径: %1（使用中，自选路径）</source>
        <translation>Auto-detected path: %1 (in use, chosen by you)</translation>
    </message>
    <message>
        <source>自动检测路径: %1（使用中，自动找到）</source>
        <translation>Auto-detected path: %1 (in use, found automatically)</translation>
    </message>
    <message>
        <source>使用此路径</source>
        <translation>Use this path</translation>
    </message>
    <message>
        <source>重置为自动检测</source>
        <translation>Reset to auto-detect</translation>
    </message>
    <message>
        <source>⚠️ 如果下载 YouTube 时只看到图片格式（storyboard），通常是 yt-dlp 版本过旧，需要更新。</source>
        <translation>⚠️ If YouTube downloads show only image formats (storyboard), yt-dlp is usually too old and needs updating.</translation>
    </message>
    <message>
        <source>更新中...</source>
        <translation>Updating...</translation>
    </message>
    <message>
        <source>更新 yt-dlp 到最新版</source>
        <translation>Update yt-dlp to latest</translation>
    </message>
    <message>
        <source>安装最新 yt-dlp</source>
        <translation>Install latest yt-dlp</translation>
    </message>
    <message>
        <source>自动更新 yt-dlp</source>
        <translation>Update yt-dlp automatically</translation>
    </message>
    <message>
        <source>每天检查一次新版本；由 Quillbox 安装的 yt-dlp 会在没有下载进行时自动更新。</source>
        <translation>Checks for a new version once a day; a yt-dlp installed by Quillbox updates itself while no download is running.</translation>
    </message>
    <message>
        <source>JS 运行时（YouTube EJS）</source>
        <translation>JavaScript runtime (YouTube EJS)</translation>
    </message>
    <message>
        <source>%1 已就绪</source>
        <translation>%1 is ready</translation>
    </message>
    <message>
        <source>未检测到 JS 运行时</source>
        <translation>No JavaScript runtime found</translation>
    </message>
    <message>
        <source>YouTube 下载需要 JS 运行时来解决 n-challenge（EJS）。支持 Deno（推荐）、Node.js（≥20）、Bun。</source>
        <translation>YouTube downloads need a JavaScript runtime to solve the n-challenge (EJS). Supported: Deno (recommended), Node.js (≥20), Bun.</translation>
    </message>
    <message>
        <source>安装 Deno（推荐）</source>
        <translation>Install Deno (recommended)</translation>
    </message>
    <message>
        <source>安装 Node.js</source>
        <translation>Install Node.js</translation>
    </message>
    <message>
        <source>通过 Homebrew 安装：brew install deno  或  brew install node</source>
        <translation>Install with Homebrew: brew install deno  or  brew install node</translation>
    </message>
    <message>
        <source>FFmpeg（音频转码）</source>
        <translation>FFmpeg (audio conversion)</translation>
    </message>
    <message>
        <source>FFmpeg 已就绪</source>
        <translation>FFmpeg is ready</translation>
    </message>
    <message>
        <source>未检测到 FFmpeg</source>
        <translation>FFmpeg not found</translation>
    </message>
    <message>
        <source>下载音频（最佳音质、仅音频）时，yt-dlp 需要 FFmpeg 进行音频提取和转码。</source>
        <translation>To download audio (Best audio, Audio only), yt-dlp needs FFmpeg to extract and convert the audio.</translation>
    </message>
    <message>
        <source>下载 FFmpeg</source>
        <translation>Download FFmpeg</translation>
    </message>
    <message>
        <source>推荐通过 Homebrew 安装：</source>
        <translation>Installing with Homebrew is recommended:</translation>
    </message>
    <message>
        <source>下载设置</source>
        <translation>Download settings</translation>
    </message>
    <message>
        <source>默认输出目录</source>
        <translation>Default output folder</translation>
    </message>
    <message>
        <source>选择下载目录</source>
        <translation>Choose a download folder</translation>
    </message>
    <message>
        <source>同时下载数</source>
        <translation>Simultaneous downloads</translation>
    </message>
    <message>
        <source>完成时通知</source>
        <translation>Notify when finished</translation>
    </message>
    <message>
        <source>启动时继续未完成的下载</source>
        <translation>Resume unfinished downloads at startup</translation>
    </message>
    <message>
        <source>界面</source>
        <translation>Interface</translation>
    </message>
    <message>
        <source>界面渲染</source>
        <translation>Interface rendering</translation>
    </message>
    <message>
        <source>自动</source>
        <translation>Automatic</translation>
    </message>
    <message>
        <source>硬件加速</source>
        <translation>Hardware</translation>
    </message>
    <message>
        <source>软件</source>
        <translation>Software</translation>
    </message>
    <message>
        <source>正在使用：%1（%2）</source>
        <translation>In use: %1 (%2)</translation>
    </message>
    <message>
        <source>未知</source>
        <translation>Unknown</translation>
    </message>
    <message>
        <source>下次启动 Quillbox 时生效</source>
        <translation>Takes effect the next time Quillbox starts</translation>
    </message>
    <message>
        <source>从别处添加链接</source>
        <translation>Add links from elsewhere</translation>
    </message>
    <message>
        <source>监视剪贴板</source>
        <translation>Watch the clipboard</translation>
    </message>
    <message>
        <source>复制的文字里有新链接时，下载页上方会提示添加；不会自动开始下载。</source>
        <translation>When copied text contains new links, the top of the download page offers to add them; no download starts on its own.</translation>
    </message>
    <message>
        <source>复制的文字里有新链接时，下载页上方会提示添加。在 Wayland 下只能看到 Quillbox 在前台时复制的内容。</source>
        <translation>When copied text contains new links, the top of the download page offers to add them. Under Wayland, only what is copied while Quillbox is in front can be seen.</translation>
    </message>
    <message>
        <source>复制下面的书签，在浏览器中新建一个书签并把它粘贴为网址；在视频页面点这个书签，页面链接就会加入 Quillbox 的链接框。</source>
        <translation>Copy the bookmark below, create a new bookmark in your browser and paste it as the address. Click this bookmark on a video page and the page’s link is added to Quillbox’s links box.</translation>
    </message>
    <message>
        <source>已复制</source>
        <translation>Copied</translation>
    </message>
    <message>
        <source>复制书签</source>
        <translation>Copy bookmark</translation>
    </message>
    <message>
        <source>界面语言</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>跟随系统</source>
        <translation>Same as system</translation>
    </message>
</context>
<context>
    <name>SidebarView</name>
    <message>
        <source>视频下载管理器</source>
        <translation>Video download manager</translation>
    </message>
    <message>
        <source>总任务</source>
        <translation>Total</translation>
    </message>
    <message>
        <source>完成</source>
        <translation>Completed</translation>
    </message>
    <message>
        <source>下载管理</source>
        <translation>Downloads</translation>
    </message>
    <message>
        <source>参数预设</source>
        <translation>Presets</translation>
    </message>
    <message>
        <source>Cookie 管理</source>
        <translation>Cookies</translation>
    </message>
    <message>
        <source>下载日志</source>
        <translation>Download log</translation>
    </message>
    <message>
        <source>设置</source>
        <translation>Settings</translation>
    </message>
</context>
<context>
    <name>VideoInfoView</name>
    <message>
        <source>时长</source>
        <translation>Duration</translation>
    </message>
    <message>
        <source>作者</source>
        <translation>Author</translation>
    </message>
    <message>
        <source>播放量</source>
        <translation>Views</translation>
    </message>
    <message>
        <source>点赞数</source>
        <translation>Likes</translation>
    </message>
    <message>
        <source>关闭</source>
        <translation>Close</translation>
    </message>
</context>
</TS>
