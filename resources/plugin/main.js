'use strict';

// What Resolve starts when "Zuvo" is chosen in its menu Workspace > Workflow Integrations: a window with the plugin's
// page. Its button starts Zuvo Manager, or raises the one that runs, by the application's own link. The page needs
// nothing of Resolve's, so no library of its maker is loaded.

const path = require('path');
const { app, BrowserWindow, shell } = require('electron');

const applicationLink = 'zuvo-manager://open';

/** Hands the application's link to the desktop; any other address is not followed. */
function follow(address) {
    if (address === applicationLink || address === applicationLink + '/') {
        shell.openExternal(applicationLink).catch((error) => {
            console.error('Zuvo Manager could not be opened: ' + error.message);
        });
    }
}

function openWindow() {
    const window = new BrowserWindow({
        width: 480,
        height: 420,
        title: 'Zuvo',
        backgroundColor: '#0d0d12',
        autoHideMenuBar: true,
        webPreferences: { nodeIntegration: false, contextIsolation: true, sandbox: true },
    });
    window.webContents.on('will-navigate', (event, address) => {
        event.preventDefault();
        follow(address);
    });
    window.webContents.setWindowOpenHandler(({ url }) => {
        follow(url);
        return { action: 'deny' };
    });
    window.loadFile(path.join(__dirname, 'index.html'));
}

app.whenReady().then(openWindow);

// Closing the window ends the plugin on macOS too: Resolve starts it again from its menu.
app.on('window-all-closed', () => app.quit());
