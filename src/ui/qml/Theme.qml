pragma Singleton
import QtQuick
import Zuvo

/// The one place of colours, gradients, fonts, spacings and radii.
QtObject {
    id: theme

    // Colours.
    readonly property color background: "#1A1612"
    readonly property color foreground: "#F5E6C8"
    readonly property color accent: "#e8440a"
    readonly property color accentHover: "#ff6a30"
    readonly property color muted: "#211E18"
    readonly property color border: "#3A3228"
    readonly property color textMuted: "#A89880"
    readonly property color textSecondary: "#C4B8A0"
    readonly property color surface: "#211E18"
    readonly property color surfaceHover: "#2A2520"
    readonly property color cardBg: "#241F19"
    readonly property color cardBorder: faded("#F5E6C8", 0.06)
    readonly property color success: "#4A9E6D"
    readonly property color warning: "#D4A843"
    readonly property color error: "#C44A3F"
    readonly property color gemEmerald: "#4A9E6D"
    readonly property color gemSapphire: "#4A7EB5"
    readonly property color gemAmethyst: "#8B5EB5"
    readonly property color gemRuby: "#C44A3F"
    readonly property color gemTopaz: "#D4A843"
    readonly property color gemOpal: "#7EBBB5"
    readonly property color torchGlow: "#E8A040"
    readonly property var chapterGems: [gemEmerald, gemSapphire, gemAmethyst, gemRuby, gemTopaz, gemOpal]

    // Gradients. The linear ones run from top to bottom unless whoever uses their stops turns them.
    readonly property Gradient accentGradient: Gradient {
        GradientStop { position: 0.0; color: "#e8440a" }
        GradientStop { position: 1.0; color: "#C43608" }
    }
    readonly property Gradient subtleGradient: Gradient {
        GradientStop { position: 0.0; color: theme.faded("#F5E6C8", 0.04) }
        GradientStop { position: 1.0; color: theme.faded("#F5E6C8", 0.0) }
    }
    readonly property Gradient glassGradient: Gradient {
        GradientStop { position: 0.0; color: theme.faded("#F5E6C8", 0.06) }
        GradientStop { position: 1.0; color: theme.faded("#E8A040", 0.02) }
    }
    /// From the middle outwards: for a radial fill, whose stops they are.
    readonly property Gradient torchRadial: Gradient {
        GradientStop { position: 0.0; color: theme.faded("#E8A040", 0.08) }
        GradientStop { position: 1.0; color: theme.faded("#E8A040", 0.0) }
    }

    /// The two colours of a gradient of the gem at `index`, counted round and round; of the first without an index.
    function stepGradient(index) {
        const place = Math.trunc(index ?? 0) % chapterGems.length || 0;
        const gem = chapterGems[(place + chapterGems.length) % chapterGems.length];
        return [gem, Qt.darker(gem, 1.3)];
    }

    // Fonts.
    function largeTitle(size) { return textFont(size ?? 36, Font.Bold); }
    function title(size) { return textFont(size ?? 28, Font.DemiBold); }
    function title2(size) { return textFont(size ?? 22, Font.Medium); }
    function headline(size) { return textFont(size ?? 16, Font.DemiBold); }
    function body(size) { return textFont(size ?? 14, Font.Normal); }
    function callout(size) { return textFont(size ?? 15, Font.Normal); }
    function subheadline(size) { return textFont(size ?? 13, Font.Normal); }
    function caption(size) { return textFont(size ?? 12, Font.Normal); }
    function caption2(size) { return textFont(size ?? 11, Font.Normal); }
    function mono(size) { return Qt.font({ "family": Fonts.mono, "pixelSize": size ?? 12 }); }

    // Spacing.
    readonly property int spacing2: 2
    readonly property int spacing4: 4
    readonly property int spacing6: 6
    readonly property int spacing8: 8
    readonly property int spacing12: 12
    readonly property int spacing16: 16
    readonly property int spacing20: 20
    readonly property int spacing24: 24
    readonly property int spacing32: 32
    readonly property int spacing40: 40
    readonly property int spacing48: 48

    // Radii.
    readonly property int radiusXs: 8
    readonly property int radiusSm: 12
    readonly property int radiusMd: 18
    readonly property int radiusLg: 24
    readonly property int radiusXl: 32

    /// The colour at that opacity.
    function faded(color, opacity) { return Qt.alpha(color, opacity); }

    /// The colour at that share of the way from `from` to `to`; their opacities go along.
    function between(from, to, share) {
        return Qt.rgba(from.r + (to.r - from.r) * share, from.g + (to.g - from.g) * share,
                       from.b + (to.b - from.b) * share, from.a + (to.a - from.a) * share);
    }

    /// Text of any size and weight; tracking is the space added between letters.
    function textFont(size, weight, tracking) {
        return Qt.font({
            "family": Fonts.text, "pixelSize": size, "weight": weight ?? Font.Normal, "letterSpacing": tracking ?? 0
        });
    }
}
